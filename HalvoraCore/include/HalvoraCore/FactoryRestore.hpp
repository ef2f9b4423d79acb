#pragma once

#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/RewriteGuard.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <EDIDKit/Bytes.hpp>

#include <optional>

namespace HalvoraCore {

/// Gives displays their factory EDIDs back: at quit, those showing an EDID
/// this system wrote; at the user's reset, every display, with the saved
/// overrides and modes forgotten.
class FactoryRestore {
public:
    FactoryRestore(MonitorRecords& monitors, DisplayWriter& writer, const RewriteGuard& guard)
        : monitors_(monitors), writer_(writer), guard_(guard) {}

    /// Quitting: every display showing an override of ours (a saved one, the
    /// pending change's `pendingEDID`, or one written in this run) gets its
    /// factory EDID back; failures are passed over. `othersActive`: another
    /// tool may have written to the displays since.
    void atQuit(const EDIDKit::Bytes* pendingEDID, bool othersActive);
    /// The user's reset. Every display is handled; a monitor whose display
    /// could not be reset keeps its record. The first failure, if any.
    std::optional<SplitError> resetAll();

private:
    MonitorRecords& monitors_;
    DisplayWriter& writer_;
    const RewriteGuard& guard_;
};

} // namespace HalvoraCore
