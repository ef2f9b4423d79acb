#pragma once

#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplaySettings.hpp>
#include <HalvoraCore/ExternalDisplay.hpp>

#include <EDIDKit/EDID.hpp>

#include <optional>

namespace HalvoraCore {

/// One attached display as an operation sees it: the display, its EDID read
/// once, the key of its monitor's record, and that record when there is one.
/// A snapshot: after the operation changes the settings it takes a fresh one.
struct AttachedMonitor {
    ExternalDisplay display;
    EDIDKit::EDID edid;
    std::optional<DisplaySettings> settings;
    /// Where the monitor's record is kept: the record the display's override
    /// belongs to while it shows one of ours, else the identity it reports.
    DisplayIdentity key;
    /// The EDID of ours the display shows (saved or unconfirmed), as it was
    /// written, however the port handed it back; nothing when it shows none.
    std::optional<EDIDKit::Bytes> ourEDID;

    bool showsOurs() const { return ourEDID.has_value(); }

    const DisplayID& id() const { return display.id; }
    const EDIDKit::Bytes& reported() const { return display.edid; }
};

} // namespace HalvoraCore
