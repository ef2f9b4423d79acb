#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace HalvoraCore {

/// How a monitor reacts when its picture-by-picture mode is toggled.
enum class PBPBehavior {
    switchesOnToggle,  ///< reports its split EDID while PBP is on, its full one otherwise
    latchedAtPlug,     ///< keeps the EDID it reported when it was plugged in
    fixedMissingSplit, ///< always the same EDID, without the split timing
    fixedWithSplit,    ///< always the same EDID, with the split timing
};

/// The raw value: the case name ("latchedAtPlug").
std::string_view rawValue(PBPBehavior behavior);
/// The case with this raw value (case-sensitive), or nothing.
std::optional<PBPBehavior> pbpBehavior(std::string_view rawValue);
/// Whether the monitor needs an override EDID to offer its split timing.
bool needsOverride(PBPBehavior behavior);

} // namespace HalvoraCore
