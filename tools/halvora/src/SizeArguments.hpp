#pragma once

#include <EDIDKit/Resolution.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace Halvora {

/// The largest width or height an EDID can state: DisplayID's 16-bit size
/// fields hold up to 65536. Sizes given on the command line are checked
/// against it where they are read, before any arithmetic is done with them.
inline constexpr int largestEDIDSize = 65536;

/// A whole number from 1 to `largestEDIDSize`, or nothing.
std::optional<int> sizeNumber(std::string_view text);

/// "3440x1440", "3440X1440" or "3440×1440", each number as `sizeNumber` reads it.
std::optional<EDIDKit::Resolution> parseResolution(const std::string& text);

} // namespace Halvora
