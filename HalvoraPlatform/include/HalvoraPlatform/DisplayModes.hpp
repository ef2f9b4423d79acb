#pragma once

#include <HalvoraPlatform/ModeSpec.hpp>
#include <HalvoraPlatform/seams/CoreGraphicsDisplays.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// The only door to display modes: the online external displays, their modes
/// usable for the desktop, the current mode, and switching to the mode that
/// matches a requested size and refresh rate.
class DisplayModes {
public:
    using Display = CoreGraphicsDisplays::DisplayNumber;
    using Mode = CoreGraphicsDisplays::Mode;

    /// How many online displays are asked for.
    static constexpr std::uint32_t maximumDisplays = 16;
    /// A requested rate matches a mode's when they differ by less than this.
    static constexpr double refreshTolerance = 0.5;

    explicit DisplayModes(std::shared_ptr<CoreGraphicsDisplays> displays);

    /// The online displays that are not built in, in the order reported.
    std::vector<Display> externalDisplays() const;
    /// The first of them.
    std::optional<Display> externalDisplay() const;
    /// Every mode of the display (duplicate low-resolution modes included)
    /// that is usable for the desktop, in order; empty on failure.
    std::vector<Mode> list(Display display) const;
    std::optional<Mode> current(Display display) const;
    /// Switches to the first listed 1:1 mode (pixel width equal to width, so a
    /// scaled HiDPI variant never matches) of the requested size whose rate is
    /// within 0.5 Hz, permanently. Throws DisplayModeError: noSuchMode when
    /// none matches, switchFailed with the completion code.
    void set(const ModeSpec& spec, Display display) const;
    /// "1720x1440@60", or "1280x720@60 (HiDPI)" for a scaled mode; the rate rounded.
    static std::string describe(const Mode& mode);

    CoreGraphicsDisplays& coreGraphics() const { return *displays_; }

private:
    std::shared_ptr<CoreGraphicsDisplays> displays_;
};

} // namespace HalvoraPlatform
