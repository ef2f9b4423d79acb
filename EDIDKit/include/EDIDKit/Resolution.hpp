#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace EDIDKit {

/// A size in pixels: a panel's native resolution or one part of it.
struct Resolution {
    int width = 0;
    int height = 0;

    /// The longest side an EDID can describe: DisplayID detailed timings
    /// carry 16-bit sizes, 1 to 65536 pixels.
    static constexpr int largestDescribableSide = 65536;
    /// Whether an EDID can describe this size: both sides 1 to 65536 pixels.
    constexpr bool isDescribable() const {
        return width >= 1 && height >= 1 && width <= largestDescribableSide &&
               height <= largestDescribableSide;
    }

    /// "3440×1440": width, the multiplication sign U+00D7, height.
    std::string description() const;

    /// The common wide panels of which this resolution could be one side-by-side
    /// part (a half, a third or a quarter), in the order of the panel table.
    std::vector<Resolution> commonNativesSplittingInto() const;

    /// The fixed table of common native panel resolutions, in the order tried.
    static const std::vector<Resolution>& commonNatives();

    friend bool operator==(const Resolution&, const Resolution&) = default;
};

} // namespace EDIDKit

template <> struct std::hash<EDIDKit::Resolution> {
    std::size_t operator()(const EDIDKit::Resolution& r) const noexcept {
        const auto w = static_cast<std::size_t>(static_cast<unsigned>(r.width));
        const auto h = static_cast<std::size_t>(static_cast<unsigned>(r.height));
        return (w * 0x9E3779B97F4A7C15ULL) ^ h;
    }
};
