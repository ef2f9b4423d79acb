#include <HalvoraPlatform/DisplayModes.hpp>
#include <HalvoraPlatform/LiveConflictProbe.hpp>
#include <nlohmann/json.hpp>

namespace HalvoraPlatform {

using HalvoraCore::ConflictingTool;
using namespace HalvoraPlatform::OtherOverrideTools;

LiveConflictProbe::LiveConflictProbe(Parts parts) : parts_(std::move(parts)) {}

std::string LiveConflictProbe::serviceTarget() const {
    return "gui/" + std::to_string(parts_.userID()) + "/" + parts_.serviceLabel;
}

HalvoraCore::ConflictSet LiveConflictProbe::detect() {
    HalvoraCore::ConflictSet found;
    // A build that was not told the service's label cannot look for it.
    if (!parts_.serviceLabel.empty() && parts_.launchctl.run({"print", serviceTarget()}) == 0)
        found.insert(ConflictingTool::edidOverrideService);
    if (betterDisplayAutoApplies()) found.insert(ConflictingTool::betterDisplay);
    return found;
}

void LiveConflictProbe::takeOver(ConflictingTool tool) {
    if (tool == ConflictingTool::betterDisplay) return; // only reported, never stopped
    const std::string target = serviceTarget();
    parts_.launchctl.run({"bootout", target}); // its status says nothing: the checks below do
    if (parts_.launchctl.run({"disable", target}) != 0) throw TakeOverFailed();
    for (int i = 0; i < 20; ++i)
        if (parts_.launchctl.run({"print", target}) == 0)
            parts_.launchctl.spawner().sleepMilliseconds(100);
    if (parts_.launchctl.run({"print", target}) == 0) throw TakeOverFailed();
}

bool LiveConflictProbe::betterDisplayAutoApplies() {
    auto& app = *parts_.betterDisplay;
    // The settings of an application that is not running are not in force.
    if (!app.isRunning(betterDisplayBundleID)) return false;
    app.synchronize(betterDisplayBundleID);
    for (const std::string& key :
         app.keys(betterDisplayBundleID).value_or(std::vector<std::string>{})) {
        if (!key.starts_with(autoApplyPrefix)) continue;
        const auto on = app.value(key, betterDisplayBundleID);
        if (!std::holds_alternative<bool>(on) || !std::get<bool>(on)) continue;
        const auto stored = app.value(storedIdentifiersPrefix + key.substr(autoApplyPrefix.size()),
                                      betterDisplayBundleID);
        const auto text = std::holds_alternative<std::string>(stored)
                              ? std::optional(std::get<std::string>(stored))
                              : std::nullopt;
        if (isConnected(text)) return true;
    }
    return false;
}

bool LiveConflictProbe::isConnected(const std::optional<std::string>& storedIdentifiers) {
    if (!storedIdentifiers) return true;
    const auto list = nlohmann::json::parse(*storedIdentifiers, nullptr, false);
    if (list.is_discarded() || !list.is_array() || list.empty()) return true;
    for (const auto& entry : list)
        if (!entry.is_object()) return true;
    auto& cg = *parts_.coreGraphics;
    const auto displays = HalvoraPlatform::DisplayModes(parts_.coreGraphics).externalDisplays();
    const auto number = [](const nlohmann::json& entry, const char* key) -> std::optional<double> {
        const auto found = entry.find(key);
        if (found == entry.end() || !found->is_number()) return std::nullopt;
        return found->get<double>();
    };
    for (const auto& entry : list) {
        const auto vendor = number(entry, "vendorNumber");
        const auto model = number(entry, "modelNumber");
        if (!vendor || !model) return true; // an entry that names no display counts as connected
        const double serial = number(entry, "serial").value_or(0);
        for (const auto d : displays)
            if (cg.vendorNumber(d) == *vendor && cg.modelNumber(d) == *model &&
                cg.serialNumber(d) == serial)
                return true;
    }
    return false;
}

} // namespace HalvoraPlatform
