#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace HalvoraPlatform {

/// The CoreGraphics calls behind displays and their modes, one for one. Which
/// displays are external, which modes count and how a mode is matched is
/// DisplayModes' business.
class CoreGraphicsDisplays {
public:
    /// A CGDirectDisplayID.
    using DisplayNumber = std::uint32_t;
    /// A retained CGDisplayMode, released with its last copy; opaque here.
    using ModeRef = std::shared_ptr<const void>;

    /// What the mode calls report of one mode.
    struct Mode {
        std::size_t width = 0;         ///< CGDisplayModeGetWidth (points)
        std::size_t height = 0;        ///< CGDisplayModeGetHeight (points)
        std::size_t pixelWidth = 0;    ///< CGDisplayModeGetPixelWidth
        double refreshRate = 0;        ///< CGDisplayModeGetRefreshRate
        bool usableForDesktop = false; ///< CGDisplayModeIsUsableForDesktopGUI
        ModeRef ref;
    };

    virtual ~CoreGraphicsDisplays() = default;

    /// CGGetOnlineDisplayList for at most `maximum` displays; empty on failure.
    virtual std::vector<DisplayNumber> onlineDisplays(std::uint32_t maximum) = 0;
    virtual bool isBuiltin(DisplayNumber display) = 0;
    virtual std::uint32_t vendorNumber(DisplayNumber display) = 0;
    virtual std::uint32_t modelNumber(DisplayNumber display) = 0;
    virtual std::uint32_t serialNumber(DisplayNumber display) = 0;
    /// CGDisplayCopyAllDisplayModes with kCGDisplayShowDuplicateLowResolutionModes
    /// set to true, in the order returned; empty on failure.
    virtual std::vector<Mode> allModes(DisplayNumber display) = 0;
    /// CGDisplayCopyDisplayMode.
    virtual std::optional<Mode> currentMode(DisplayNumber display) = 0;
    /// CGBeginDisplayConfiguration, CGConfigureDisplayWithDisplayMode (no
    /// options), CGCompleteDisplayConfiguration with kCGConfigurePermanently:
    /// the completion's error code.
    virtual std::int32_t configure(DisplayNumber display, const Mode& mode) = 0;
};

/// CGDisplayRegisterReconfigurationCallback: the callback receives the display
/// and the CGDisplayChangeSummaryFlags, on whatever thread CoreGraphics uses.
class ReconfigurationEvents {
public:
    virtual ~ReconfigurationEvents() = default;
    virtual void registerCallback(
        std::function<void(CoreGraphicsDisplays::DisplayNumber, std::uint32_t flags)> callback) = 0;
};

} // namespace HalvoraPlatform
