#include <HalvoraCore/PBPBehavior.hpp>

#include <array>
#include <utility>

namespace HalvoraCore {

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
