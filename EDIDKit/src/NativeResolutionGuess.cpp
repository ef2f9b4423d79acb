#include <EDIDKit/NativeResolutionGuess.hpp>

#include <EDIDKit/EDID.hpp>

#include <array>
#include <cmath>
#include <utility>

namespace EDIDKit {

std::string_view toString(NativeResolutionGuess::Kind kind) {
    switch (kind) {
    case NativeResolutionGuess::Kind::full: return "full";
    case NativeResolutionGuess::Kind::split: return "split";
    case NativeResolutionGuess::Kind::uncertain: return "uncertain";
    }
    return "full";
}

bool hasStandardAspectRatio(Resolution r) {
    static constexpr std::array<std::pair<double, double>, 13> ratios{{
        {4, 3}, {5, 4}, {3, 2}, {16, 10}, {16, 9}, {21, 9}, {64, 27},
        {43, 18}, {12, 5}, {32, 10}, {32, 9}, {1, 1}, {16, 18},
    }};
    const double ratio = static_cast<double>(r.width) / static_cast<double>(r.height);
    for (const auto& [a, b] : ratios)
        if (std::abs(ratio * b / a - 1.0) < 0.02) return true;
    return false;
}

std::optional<NativeResolutionGuess> EDID::nativeResolutionGuess() const {
    const auto native = nativeResolution();
    if (!native) return std::nullopt;
    std::vector<Resolution> panels = native->commonNativesSplittingInto();
    if (!hasStandardAspectRatio(*native) && !panels.empty())
        return NativeResolutionGuess{NativeResolutionGuess::Kind::split, std::move(panels)};
    if (detailedTimings().size() == 1 && !panels.empty()) {
        panels.insert(panels.begin(), *native);
        return NativeResolutionGuess{NativeResolutionGuess::Kind::uncertain, std::move(panels)};
    }
    return NativeResolutionGuess{NativeResolutionGuess::Kind::full, {*native}};
}

} // namespace EDIDKit
