#pragma once

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/PendingChange.hpp>
#include <HalvoraCore/RewriteGuard.hpp>

#include <EDIDKit/SplitLayout.hpp>

#include <optional>

namespace HalvoraCore {

/// Tells a monitor's own EDIDs from the ones this system wrote, and keeps its
/// own ones in its record: the full-mode EDID, and the picture-by-picture one.
/// An EDID this system wrote is never taken for the monitor's own, nor is what
/// a port reports while it carries an override written in this run (the
/// system may have handed it back altered).
class FactoryCapture {
public:
    FactoryCapture(MonitorRecords& monitors, const PendingChange& pending, const RewriteGuard& guard,
                   EDIDKit::SplitLayout layout)
        : monitors_(monitors), pending_(pending), guard_(guard), layout_(layout) {}

    /// Whether these bytes are an EDID this system wrote for the monitor of
    /// `settings`: the saved override, the pending change's, or one rebuilt
    /// from the saved factory EDIDs the way overrides are built.
    bool isOwnEDID(const EDIDKit::Bytes& bytes, const std::optional<DisplaySettings>& settings) const;
    /// Remembers the monitor's own EDID for the mode it is in (full or split).
    void capture(const AttachedMonitor& monitor);
    /// Whether the monitor's own EDID already carries the split timing;
    /// nothing when that cannot be told.
    std::optional<bool> factoryHasSplit(const AttachedMonitor& monitor) const;

private:
    /// Whether what the display reports now may be the monitor's own EDID.
    bool mayBeFactory(const AttachedMonitor& monitor) const;

    MonitorRecords& monitors_;
    const PendingChange& pending_;
    const RewriteGuard& guard_;
    EDIDKit::SplitLayout layout_;
};

} // namespace HalvoraCore
