#pragma once

#include <EDIDKit/Resolution.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraCore {

/// A display mode as the core sees it: size and whole-hertz refresh rate.
struct DisplayMode {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t refreshHz = 0;

    EDIDKit::Resolution resolution() const {
        return {static_cast<int>(width), static_cast<int>(height)};
    }
    /// "2560×1440@60".
    std::string description() const;

    friend bool operator==(const DisplayMode&, const DisplayMode&) = default;
};

/// Where in `modes` the mode to switch to for `size` is: of those with exactly
/// that width and height, the one with the highest refresh rate, the first in
/// the list among equal rates. Nothing when no mode has that size.
std::optional<std::size_t> fastestModeIndex(const std::vector<DisplayMode>& modes, EDIDKit::Resolution size);

} // namespace HalvoraCore

template <> struct std::hash<HalvoraCore::DisplayMode> {
    std::size_t operator()(const HalvoraCore::DisplayMode& m) const noexcept {
        const std::hash<std::int64_t> h;
        return h(m.width) * 31 * 31 + h(m.height) * 31 + h(m.refreshHz);
    }
};
