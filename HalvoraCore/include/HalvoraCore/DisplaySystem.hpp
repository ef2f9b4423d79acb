#pragma once

#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/ExternalDisplay.hpp>
#include <functional>
#include <optional>
#include <vector>

namespace HalvoraCore {

/// The attached external displays, their EDIDs and modes, and the events of
/// the display configuration. Calls that "may fail" throw.
class DisplaySystem {
public:
    virtual ~DisplaySystem() = default;

    /// A fresh, cheap snapshot of the attached external displays, in menu order.
    virtual std::vector<ExternalDisplay> externalDisplays() = 0;
    /// Makes the display report `edid` from now on (a virtual EDID).
    virtual void applyEDIDOverride(const EDIDKit::Bytes& edid, const DisplayID& display) = 0;
    /// Removes any override so that the display reports its own EDID again.
    virtual void restoreFactoryEDID(const DisplayID& display) = 0;
    virtual std::vector<DisplayMode> modes(const DisplayID& display) = 0;
    virtual std::optional<DisplayMode> currentMode(const DisplayID& display) = 0;
    virtual void setMode(const DisplayMode& mode, const DisplayID& display) = 0;

    /// Called whenever the configuration changes; true for a plug or unplug.
    virtual void observeConfigurationChanges(std::function<void(bool isHotplug)> callback) = 0;
    /// Called whenever an external display signals an interrupt, while the
    /// interrupts are watched.
    virtual void observeDisplayInterrupts(std::function<void()> callback) = 0;
    /// Whether an interrupt could be acted on now. While none could, the
    /// display system need not watch the ports for them (a Mac then polls no
    /// EventLog); an interrupt from while it was not watching is never delivered.
    virtual void watchInterrupts(bool wanted) = 0;
    /// Called with true when the displays go to sleep, false when they wake.
    virtual void observeSleep(std::function<void(bool asleep)> callback) = 0;
};

} // namespace HalvoraCore
