#pragma once

#include <string>
#include <string_view>

namespace Halvora {

/// Text read from an EDID, made safe to print: every control character (C0,
/// DEL and the C1 range U+0080–U+009F, which terminals may take for escape
/// sequences) is written with JSON's escapes ("\n", "\t", "\u001b"), and a
/// backslash as "\\", so that what is shown can be read back exactly. Other
/// characters, quotes included, are left as they are.
std::string printableText(std::string_view utf8);

} // namespace Halvora
