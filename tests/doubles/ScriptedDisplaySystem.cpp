#include "ScriptedDisplaySystem.hpp"

#include <algorithm>
#include <stdexcept>

namespace TestDoubles {

using HalvoraCore::DisplayID;
using HalvoraCore::DisplayMode;

std::string ScriptedDisplaySystem::Call::description() const {
    return operation + " " + display.rawValue + (mode ? " " + mode->description() : "");
}

std::vector<std::string> ScriptedDisplaySystem::callDescriptions() const {
    std::vector<std::string> out;
    for (const auto& c : calls) out.push_back(c.description());
    return out;
}

ScriptedDisplaySystem::Attached* ScriptedDisplaySystem::find(const std::string& id) {
    for (auto& d : displays_)
        if (d.id == id) return &d;
    return nullptr;
}

const ScriptedDisplaySystem::Attached* ScriptedDisplaySystem::find(const std::string& id) const {
    for (const auto& d : displays_)
        if (d.id == id) return &d;
    return nullptr;
}

void ScriptedDisplaySystem::attach(const std::string& id, EDIDKit::Bytes factoryEDID, std::vector<DisplayMode> modes,
                                   std::optional<DisplayMode> current, std::optional<std::string> port) {
    detach(id);
    displays_.push_back({id, std::move(factoryEDID), std::nullopt, std::move(modes), current, std::move(port)});
}

void ScriptedDisplaySystem::detach(const std::string& id) {
    std::erase_if(displays_, [&](const Attached& d) { return d.id == id; });
}

void ScriptedDisplaySystem::setFactoryEDID(const std::string& id, EDIDKit::Bytes edid) { find(id)->factoryEDID = std::move(edid); }
void ScriptedDisplaySystem::setOverride(const std::string& id, std::optional<EDIDKit::Bytes> edid) { find(id)->override = std::move(edid); }
void ScriptedDisplaySystem::setModes(const std::string& id, std::vector<DisplayMode> modes) { find(id)->modes = std::move(modes); }
void ScriptedDisplaySystem::setCurrentMode(const std::string& id, std::optional<DisplayMode> mode) { find(id)->current = mode; }

std::optional<EDIDKit::Bytes> ScriptedDisplaySystem::overrideOn(const std::string& id) const {
    const Attached* d = find(id);
    return d ? d->override : std::nullopt;
}

std::optional<DisplayMode> ScriptedDisplaySystem::currentModeOf(const std::string& id) const {
    const Attached* d = find(id);
    return d ? d->current : std::nullopt;
}

void ScriptedDisplaySystem::fireConfigurationChange(bool isHotplug) {
    for (const auto& o : configurationObservers_) o(isHotplug);
}
void ScriptedDisplaySystem::fireInterrupt() {
    for (const auto& o : interruptObservers_) o();
}
void ScriptedDisplaySystem::fireSleep(bool asleep) {
    for (const auto& o : sleepObservers_) o(asleep);
}

std::vector<HalvoraCore::ExternalDisplay> ScriptedDisplaySystem::externalDisplays() {
    std::vector<HalvoraCore::ExternalDisplay> out;
    for (const auto& d : displays_) out.push_back({DisplayID(d.id), d.override.value_or(d.factoryEDID), d.port});
    return out;
}

void ScriptedDisplaySystem::applyEDIDOverride(const EDIDKit::Bytes& edid, const DisplayID& display) {
    calls.push_back({"applyEDIDOverride", display, edid, std::nullopt});
    if (onCall) onCall(calls.back());
    if (failApply) std::rethrow_exception(failApply);
    if (Attached* d = find(display.rawValue)) d->override = alterWrites ? alterWrites(edid) : edid;
}

void ScriptedDisplaySystem::restoreFactoryEDID(const DisplayID& display) {
    calls.push_back({"restoreFactoryEDID", display, std::nullopt, std::nullopt});
    if (onCall) onCall(calls.back());
    if (failRestore) std::rethrow_exception(failRestore);
    if (const auto f = failRestoreOn.find(display.rawValue); f != failRestoreOn.end()) std::rethrow_exception(f->second);
    if (Attached* d = find(display.rawValue)) d->override.reset();
}

std::vector<DisplayMode> ScriptedDisplaySystem::modes(const DisplayID& display) {
    const Attached* d = find(display.rawValue);
    return d ? d->modes : std::vector<DisplayMode>{};
}

std::optional<DisplayMode> ScriptedDisplaySystem::currentMode(const DisplayID& display) {
    return currentModeOf(display.rawValue);
}

void ScriptedDisplaySystem::setMode(const DisplayMode& mode, const DisplayID& display) {
    calls.push_back({"setMode", display, std::nullopt, mode});
    if (onCall) onCall(calls.back());
    if (failSetMode) std::rethrow_exception(failSetMode);
    if (Attached* d = find(display.rawValue)) d->current = mode;
}

void ScriptedDisplaySystem::observeConfigurationChanges(std::function<void(bool)> callback) {
    ++observerRegistrations;
    configurationObservers_.push_back(std::move(callback));
}
void ScriptedDisplaySystem::observeDisplayInterrupts(std::function<void()> callback) {
    ++observerRegistrations;
    interruptObservers_.push_back(std::move(callback));
}
void ScriptedDisplaySystem::observeSleep(std::function<void(bool)> callback) {
    ++observerRegistrations;
    sleepObservers_.push_back(std::move(callback));
}

} // namespace TestDoubles
