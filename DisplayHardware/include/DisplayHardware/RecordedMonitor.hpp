#pragma once

#include <EDIDKit/Bytes.hpp>
#include <HalvoraCore/PBPBehavior.hpp>
#include <optional>
#include <string>

namespace DisplayHardware {

/// A monitor of the recorded machine: the EDIDs it reports by itself, how it
/// reacts when picture-by-picture is toggled, and how it starts out.
struct RecordedMonitor {
    std::string name;
    /// The EDID it reports in single-picture mode.
    EDIDKit::Bytes full;
    /// The EDID it reports while picture-by-picture is on, when that differs.
    std::optional<EDIDKit::Bytes> split;
    HalvoraCore::PBPBehavior behavior = HalvoraCore::PBPBehavior::fixedMissingSplit;
    bool attached = true;
    bool pbp = false;
};

} // namespace DisplayHardware
