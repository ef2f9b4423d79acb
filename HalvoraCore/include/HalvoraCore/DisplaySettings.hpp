#pragma once

#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/PBPBehavior.hpp>

#include <EDIDKit/Bytes.hpp>
#include <EDIDKit/Resolution.hpp>

#include <optional>
#include <string>

namespace HalvoraCore {

/// What is remembered per monitor across launches (one record of displays.json).
struct DisplaySettings {
    DisplayIdentity identity;
    /// Last port name seen for this monitor.
    std::optional<std::string> port;
    /// The panel's native resolution as the user confirmed it.
    EDIDKit::Resolution native;
    /// The override the user kept; re-applied on plug, wake and launch.
    std::optional<EDIDKit::Bytes> overrideEDID;
    /// The mode in force just before the kept override was written.
    std::optional<DisplayMode> lastMode;
    /// How the monitor behaves when PBP is toggled; nothing when not yet observed.
    std::optional<PBPBehavior> behavior;
    /// The monitor's own EDID in full (single-picture) mode, captured automatically.
    std::optional<EDIDKit::Bytes> factoryFullEDID;
    /// The monitor's own EDID in picture-by-picture mode, captured automatically.
    std::optional<EDIDKit::Bytes> factorySplitEDID;

    DisplaySettings() = default;
    DisplaySettings(DisplayIdentity identity_, std::optional<std::string> port_, EDIDKit::Resolution native_,
                    std::optional<EDIDKit::Bytes> overrideEDID_ = std::nullopt,
                    std::optional<DisplayMode> lastMode_ = std::nullopt,
                    std::optional<PBPBehavior> behavior_ = std::nullopt)
        : identity(identity_), port(std::move(port_)), native(native_), overrideEDID(std::move(overrideEDID_)),
          lastMode(lastMode_), behavior(behavior_) {}

    friend bool operator==(const DisplaySettings&, const DisplaySettings&) = default;
};

} // namespace HalvoraCore
