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

std::string printableJSON(const nlohmann::json& value) {
    const std::string text = value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    // DEL and the C1 controls can only be inside strings: JSON's own
    // characters are all printable ASCII.
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0u;
        if (byte == 0x7f || (byte == 0xc2 && next >= 0x80 && next <= 0x9f)) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte == 0x7f ? 0x7fu : next);
            out += escape;
            if (byte == 0xc2) ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace Halvora
