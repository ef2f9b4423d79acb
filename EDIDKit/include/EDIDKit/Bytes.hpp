#pragma once

#include <cstdint>
#include <vector>

namespace EDIDKit {

/// A byte buffer, compared byte for byte.
using Bytes = std::vector<std::uint8_t>;

} // namespace EDIDKit
