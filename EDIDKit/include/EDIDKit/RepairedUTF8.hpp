#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace EDIDKit {

/// Decodes bytes as UTF-8 (a product name, a registry path), replacing each ill-formed subsequence with U+FFFD,
/// so that the result is always valid UTF-8.
std::string repairedUTF8(std::span<const std::uint8_t> bytes);

} // namespace EDIDKit
