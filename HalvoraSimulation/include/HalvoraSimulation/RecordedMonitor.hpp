#pragma once

#include <EDIDKit/Bytes.hpp>
#include <HalvoraCore/PBPBehavior.hpp>
#include <optional>
#include <string>

namespace HalvoraSimulation {

/// How a port hands back an EDID written to it, for the systems that do not
/// report an override exactly as it was given.
enum class WriteAlteration {
    serial,     ///< another serial number, checksum fixed
    checksum,   ///< a broken base-block checksum
    extensions, ///< the base block alone: the extension blocks are dropped
};

/// The rig's name of an alteration ("serial", "checksum", "extensions").
const char* writeAlterationName(WriteAlteration alteration);
/// The alteration of that name; nothing for any other name.
std::optional<WriteAlteration> writeAlteration(const std::string& name);
/// What a port that alters writes this way reports for `written`.
EDIDKit::Bytes alteredWrite(const EDIDKit::Bytes& written, WriteAlteration alteration);

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
    /// Set when the system alters what is written to this monitor; such a
    /// port also re-enumerates on every write, as the ones that cause
    /// re-apply loops do.
    std::optional<WriteAlteration> alterOnWrite;
};

} // namespace HalvoraSimulation
