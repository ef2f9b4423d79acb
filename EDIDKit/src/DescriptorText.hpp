#pragma once

// The 13 bytes of text a display descriptor holds, as the model writes them.

#include "EDIDLayout.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace EDIDKit {

/// `text`'s first 13 bytes; a shorter text ends with a line feed and is padded
/// with spaces.
inline std::array<std::uint8_t, Layout::displayDescriptorDataSize>
descriptorText(std::string_view text) {
    std::array<std::uint8_t, Layout::displayDescriptorDataSize> bytes{};
    bytes.fill(Layout::textPadding);
    const std::size_t length = std::min(text.size(), bytes.size());
    std::copy_n(text.begin(), length, bytes.begin());
    if (length < bytes.size()) bytes[length] = Layout::textEnd;
    return bytes;
}

} // namespace EDIDKit
