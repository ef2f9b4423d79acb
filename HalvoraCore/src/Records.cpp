#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/PBPBehavior.hpp>

#include <array>
#include <utility>

namespace HalvoraCore {

std::optional<std::size_t> fastestModeIndex(const std::vector<DisplayMode>& modes, EDIDKit::Resolution size) {
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i < modes.size(); ++i)
        if (modes[i].resolution() == size && (!best || modes[i].refreshHz > modes[*best].refreshHz)) best = i;
    return best;
}

std::string DisplayMode::description() const {
    return std::to_string(width) + "\u00D7" + std::to_string(height) + "@" + std::to_string(refreshHz);
}

namespace {

constexpr std::array<std::pair<PBPBehavior, std::string_view>, 4> behaviorNames{{
    {PBPBehavior::switchesOnToggle, "switchesOnToggle"},
    {PBPBehavior::latchedAtPlug, "latchedAtPlug"},
    {PBPBehavior::fixedMissingSplit, "fixedMissingSplit"},
    {PBPBehavior::fixedWithSplit, "fixedWithSplit"},
}};

} // namespace

std::string_view rawValue(PBPBehavior behavior) {
    for (const auto& [b, name] : behaviorNames)
        if (b == behavior) return name;
    return "";
}

std::optional<PBPBehavior> pbpBehavior(std::string_view raw) {
    for (const auto& [b, name] : behaviorNames)
        if (name == raw) return b;
    return std::nullopt;
}

bool needsOverride(PBPBehavior behavior) {
    return behavior == PBPBehavior::latchedAtPlug || behavior == PBPBehavior::fixedMissingSplit;
}

} // namespace HalvoraCore
