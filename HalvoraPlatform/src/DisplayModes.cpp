#include <HalvoraPlatform/DisplayModeError.hpp>
#include <HalvoraPlatform/DisplayModes.hpp>
#include <algorithm>
#include <cmath>

namespace HalvoraPlatform {

DisplayModes::DisplayModes(std::shared_ptr<CoreGraphicsDisplays> displays)
    : displays_(std::move(displays)) {}

std::vector<DisplayModes::Display> DisplayModes::externalDisplays() const {
    std::vector<Display> external;
    for (const Display d : displays_->onlineDisplays(maximumDisplays))
        if (!displays_->isBuiltin(d)) external.push_back(d);
    return external;
}

std::optional<DisplayModes::Display> DisplayModes::externalDisplay() const {
    const auto all = externalDisplays();
    if (all.empty()) return std::nullopt;
    return all.front();
}

std::vector<DisplayModes::Mode> DisplayModes::list(Display display) const {
    std::vector<Mode> usable;
    for (auto& m : displays_->allModes(display))
        if (m.usableForDesktop) usable.push_back(std::move(m));
    return usable;
}

std::optional<DisplayModes::Mode> DisplayModes::current(Display display) const {
    return displays_->currentMode(display);
}

void DisplayModes::set(const ModeSpec& spec, Display display) const {
    const auto modes = list(display);
    const auto width = static_cast<std::size_t>(std::max(spec.width, 0));
    const auto height = static_cast<std::size_t>(std::max(spec.height, 0));
    const auto match = std::find_if(modes.begin(), modes.end(), [&](const Mode& m) {
        return m.width == width && m.height == height && m.pixelWidth == width &&
               std::fabs(m.refreshRate - spec.refresh) < refreshTolerance;
    });
    if (match == modes.end()) throw DisplayModeError::noSuchMode(spec);
    if (const auto code = displays_->configure(display, *match); code != 0)
        throw DisplayModeError::switchFailed(code);
}

std::string DisplayModes::describe(const Mode& mode) {
    return std::to_string(mode.width) + "x" + std::to_string(mode.height) + "@" +
           std::to_string(static_cast<long long>(std::llround(mode.refreshRate))) +
           (mode.pixelWidth != mode.width ? " (HiDPI)" : "");
}

} // namespace HalvoraPlatform
