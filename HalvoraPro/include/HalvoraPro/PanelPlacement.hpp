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

/// Where a floating panel goes and whether it takes the keyboard.
struct PanelPlacement {
    /// The screen a panel centres on: the first built-in screen, otherwise the
    /// main screen; nothing when there is no screen at all.
    static std::optional<std::size_t> screenFor(const std::vector<ScreenFrame>& screens,
                                                std::optional<std::size_t> mainScreen);
    /// The origin that puts a panel of this size in the middle of the frame
    /// (whole points, so the text is not blurred).
    static std::pair<double, double> centredOrigin(double width, double height, const ScreenFrame& frame);
    /// Whether showing the panel makes it the key window: the confirmation
    /// panel does (Return keeps, Escape reverts); the switch prompt appears
    /// over whatever the user is doing without taking the keyboard.
    static bool becomesKey(PanelKind panel);
};

} // namespace HalvoraPro
