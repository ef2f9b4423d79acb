#pragma once

#include <EDIDKit/Resolution.hpp>

#include <string_view>
#include <vector>

namespace EDIDKit {

/// Whether an EDID's native resolution is the whole panel (`full`), clearly one
/// part of a wider panel (`split`), or could be either (`uncertain`).
struct NativeResolutionGuess {
    enum class Kind { full, split, uncertain };

    Kind kind = Kind::full;
    /// full: [native]; split: the panels it could be part of;
    /// uncertain: native first, then those panels.
    std::vector<Resolution> candidates;

    friend bool operator==(const NativeResolutionGuess&, const NativeResolutionGuess&) = default;
};

/// "full", "split" or "uncertain".
std::string_view toString(NativeResolutionGuess::Kind kind);

/// True when width:height is within 2% of one of the standard aspect ratios.
bool hasStandardAspectRatio(Resolution r);

} // namespace EDIDKit
