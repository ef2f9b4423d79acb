#include <HalvoraCore/DisplayMode.hpp>

namespace HalvoraCore {

std::optional<std::size_t> fastestModeIndex(const std::vector<DisplayMode>& modes, EDIDKit::Resolution size) {
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i < modes.size(); ++i)
        if (modes[i].resolution() == size && (!best || modes[i].refreshHz > modes[*best].refreshHz)) best = i;
    return best;
}

std::string DisplayMode::description() const {
    return std::to_string(width) + "\u00D7" + std::to_string(height) + "@" + std::to_string(refreshHz);
}

} // namespace HalvoraCore
