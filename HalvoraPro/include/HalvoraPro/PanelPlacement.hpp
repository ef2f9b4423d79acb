#pragma once

#include <HalvoraPro/ShellView.hpp>
#include <cstddef>
#include <optional>
#include <vector>

namespace HalvoraPro {

/// A screen as the panels see it: whether it is the built-in panel, and its
/// visible frame (without the menu bar and the Dock), in the screen
/// coordinates of the platform (origin at the bottom left on macOS).
struct ScreenFrame {
    bool isBuiltIn = false;
    double x = 0, y = 0, width = 0, height = 0;
    friend bool operator==(const ScreenFrame&, const ScreenFrame&) = default;
};

/// Where a floating panel or a window goes.
struct PanelPlacement {
    /// The screen a panel centres on: the first built-in screen, otherwise the
    /// main screen; nothing when there is no screen at all.
    static std::optional<std::size_t> screenFor(const std::vector<ScreenFrame>& screens,
                                                std::optional<std::size_t> mainScreen);
    /// The origin that puts a panel of this size in the middle of the frame
    /// (whole points, so the text is not blurred).
    static std::pair<double, double> centredOrigin(double width, double height,
                                                   const ScreenFrame& frame);
    /// The origin of a window of frame (x, y, height) resized to `newHeight`
    /// so that its top edge stays where it was (the origin is its bottom left):
    /// new content grows or shrinks the window downwards, and it does not move.
    static std::pair<double, double> originKeepingTop(double x, double y, double height,
                                                      double newHeight);
};

} // namespace HalvoraPro
