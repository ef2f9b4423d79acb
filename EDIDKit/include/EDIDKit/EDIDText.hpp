#pragma once

#include <EDIDKit/Bytes.hpp>

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

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

/// Text read from an EDID, made safe to print: every control character (C0,
/// DEL and the C1 range U+0080–U+009F, which terminals may take for escape
/// sequences) is written with JSON's escapes ("\n", "\t", "\u001b"), and a
/// backslash as "\\", so that what is shown can be read back exactly. Other
/// characters, quotes included, are left as they are.
std::string printableText(std::string_view utf8);

} // namespace EDIDKit
