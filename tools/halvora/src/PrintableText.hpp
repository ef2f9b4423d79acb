#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace Halvora {

/// Text read from an EDID, made safe to print: every control character (C0,
/// DEL and the C1 range U+0080–U+009F, which terminals may take for escape
/// sequences) is written with JSON's escapes ("\n", "\t", "\u001b"), and a
/// backslash as "\\", so that what is shown can be read back exactly. Other
/// characters, quotes included, are left as they are.
std::string printableText(std::string_view utf8);

/// A JSON value as one line that is safe on a terminal: beside the C0
/// controls JSON always escapes, DEL and the C1 controls (which JSON leaves
/// as they are) are written as "\u007f" … "\u009f". Parsed back, it is the
/// same value; text that is not UTF-8 is replaced, as in the text report.
std::string printableJSON(const nlohmann::json& value);

} // namespace Halvora
