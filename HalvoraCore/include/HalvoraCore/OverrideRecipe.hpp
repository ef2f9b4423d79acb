#pragma once

#include <EDIDKit/Bytes.hpp>
#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SplitLayout.hpp>
#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/DisplaySettings.hpp>
#include <optional>

namespace HalvoraCore {

// How the override that gives a monitor its split timing is built.

/// The factory full EDID merged with the factory split EDID, for monitors
/// that latch (or are not yet observed) when both are saved.
std::optional<EDIDKit::Bytes> mergedOverride(const DisplaySettings& settings);

/// The override that gives the monitor its split timing: the merged factory
/// EDIDs where there are, else the reported EDID with the split added.
/// Throws SplitError.
EDIDKit::Bytes splitTarget(const EDIDKit::EDID& reported, const DisplaySettings& settings,
                           EDIDKit::SplitLayout layout);

/// The override for the attached monitor, built on our override as it was
/// written where the display shows one (not on the copy the port handed
/// back), else on what it reports. Throws SplitError (notIdentified without
/// a record).
EDIDKit::Bytes splitTarget(const AttachedMonitor& monitor, EDIDKit::SplitLayout layout);

} // namespace HalvoraCore
