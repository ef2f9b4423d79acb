#pragma once

#include <EDIDKit/Resolution.hpp>

#include <cstddef>
#include <functional>

namespace EDIDKit {

/// How a panel is divided in picture-by-picture mode: `parts` pictures side by side.
struct SplitLayout {
    int parts = 2;

    /// Two halves: the only layout the system creates.
    static const SplitLayout halves;

    /// The size of one part: the native width divided by `parts` and rounded
    /// down to a multiple of 8, at the native height. Throws std::logic_error
    /// for a layout with fewer than one part (a programming error).
    Resolution splitResolution(Resolution ofNative) const;

    friend bool operator==(const SplitLayout&, const SplitLayout&) = default;
};

inline const SplitLayout SplitLayout::halves{2};

} // namespace EDIDKit

template <> struct std::hash<EDIDKit::SplitLayout> {
    std::size_t operator()(const EDIDKit::SplitLayout& l) const noexcept {
        return std::hash<int>{}(l.parts);
    }
};
