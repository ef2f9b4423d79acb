#pragma once

#include <HalvoraCore/DisplaySettings.hpp>
#include <HalvoraCore/ExternalDisplay.hpp>

#include <EDIDKit/EDID.hpp>

#include <optional>

namespace HalvoraCore {

/// One attached display as an operation sees it: the display, its EDID read
/// once, and the saved settings of its monitor when it has any. A snapshot:
/// after the operation changes the settings it takes a fresh one.
struct AttachedMonitor {
    ExternalDisplay display;
    EDIDKit::EDID edid;
    std::optional<DisplaySettings> settings;

    const DisplayID& id() const { return display.id; }
    const EDIDKit::Bytes& reported() const { return display.edid; }
};

/// The EDID in these bytes, or nothing when they are not one.
std::optional<EDIDKit::EDID> readEDID(const EDIDKit::Bytes& bytes);

} // namespace HalvoraCore
