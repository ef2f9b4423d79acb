#pragma once

#include <EDIDKit/Bytes.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace HalvoraCore {

/// Standard base64 (RFC 4648 alphabet, '=' padding, no line breaks), as
/// Foundation's JSON encoder writes byte buffers.
std::string base64Encoded(const EDIDKit::Bytes& bytes);

/// The bytes of strict standard base64; nothing for any other text (a wrong
/// character, missing or misplaced padding, a length that is not a multiple of 4).
std::optional<EDIDKit::Bytes> base64Decoded(std::string_view text);

} // namespace HalvoraCore
