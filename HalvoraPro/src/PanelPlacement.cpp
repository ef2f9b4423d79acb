#include <HalvoraPro/PanelPlacement.hpp>
#include <cmath>

namespace HalvoraPro {

std::optional<std::size_t> PanelPlacement::screenFor(const std::vector<ScreenFrame>& screens,
                                                     std::optional<std::size_t> mainScreen) {
    for (std::size_t i = 0; i < screens.size(); ++i)
        if (screens[i].isBuiltIn) return i;
    if (mainScreen && *mainScreen < screens.size()) return mainScreen;
    if (!screens.empty()) return 0;
    return std::nullopt;
}

std::pair<double, double> PanelPlacement::centredOrigin(double width, double height,
                                                        const ScreenFrame& frame) {
    return {std::round(frame.x + (frame.width - width) / 2),
            std::round(frame.y + (frame.height - height) / 2)};
}

std::pair<double, double> PanelPlacement::originKeepingTop(double x, double y, double height,
                                                           double newHeight) {
    return {x, y + height - newHeight};
}

} // namespace HalvoraPro
