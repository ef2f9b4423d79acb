#pragma once

#include <EDIDKit/Bytes.hpp>

#include <span>
#include <stdexcept>
#include <string>

namespace EDIDKit {

/// Input that looks like text but is not a hex dump of bytes.
class EDIDTextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The EDID bytes held by a file or a paste: raw binary is returned as it is;
/// text is read as hex: edid-decode's report (the block after
/// "edid-decode (hex):"), `xxd -p` output, or bytes separated by white space,
/// commas or "0x" prefixes. Throws EDIDTextError for text that is not hex.
/// Whether the bytes form a valid EDID is for EDID(data:) to say.
Bytes bytesFromEDIDInput(std::span<const std::uint8_t> input);

/// Lower-case hex, 16 bytes a line separated by spaces (the layout edid-decode
/// prints and reads), ending with a line feed.
std::string hexDump(std::span<const std::uint8_t> bytes);

} // namespace EDIDKit
