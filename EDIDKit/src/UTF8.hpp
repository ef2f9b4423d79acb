#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace EDIDKit::detail {

/// Decodes bytes as UTF-8, replacing each ill-formed subsequence with U+FFFD,
/// so that the result is always valid UTF-8.
std::string repairedUTF8(std::span<const std::uint8_t> bytes);

} // namespace EDIDKit::detail
