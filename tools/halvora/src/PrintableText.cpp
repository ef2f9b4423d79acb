#include "PrintableText.hpp"

#include <cstdio>

namespace Halvora {

namespace {

std::string unicodeEscape(unsigned codePoint) {
    char text[8];
    std::snprintf(text, sizeof text, "\\u%04x", codePoint);
    return text;
}

} // namespace

std::string printableText(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        switch (c) {
        case '\\':
            out += "\\\\";
            continue;
        case '\b':
            out += "\\b";
            continue;
        case '\f':
            out += "\\f";
            continue;
        case '\n':
            out += "\\n";
            continue;
        case '\r':
            out += "\\r";
            continue;
        case '\t':
            out += "\\t";
            continue;
        default:
            break;
        }
        if (c < 0x20 || c == 0x7F) {
            out += unicodeEscape(c);
        } else if (c == 0xC2 && i + 1 < utf8.size() &&
                   static_cast<unsigned char>(utf8[i + 1]) >= 0x80 &&
                   static_cast<unsigned char>(utf8[i + 1]) <= 0x9F) {
            // U+0080 to U+009F in UTF-8: the C1 controls.
            out += unicodeEscape(static_cast<unsigned char>(utf8[++i]));
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

} // namespace Halvora
