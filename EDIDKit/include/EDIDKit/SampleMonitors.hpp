#pragma once

#include <EDIDKit/Bytes.hpp>

#include <optional>
#include <string>
#include <vector>

namespace EDIDKit {

/// A monitor the project describes itself, for the demo, the simulator's
/// built-in machine and tests: the EDID it reports in full (single-picture)
/// mode and, when it changes, the one it reports in picture-by-picture mode.
struct SampleMonitor {
    std::string name;        ///< file-name friendly: "ultrawide-34"
    std::string description; ///< one line for people
    Bytes full;
    std::optional<Bytes> pictureByPicture;
};

/// The sample monitors, in a fixed order:
/// - "ultrawide-34": a 3440×1440 panel whose EDID lacks the 1720×1440 split
///   timing; in picture-by-picture mode it reports a 1720×1440 EDID.
/// - "superwide-49": a 5120×1440 panel (its native timing only in DisplayID);
///   in picture-by-picture mode it reports an EDID that prefers 2560×1440.
const std::vector<SampleMonitor>& sampleMonitors();

/// The sample of that name, or nothing.
const SampleMonitor* sampleMonitor(const std::string& name);

} // namespace EDIDKit
