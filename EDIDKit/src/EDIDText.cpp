#include <EDIDKit/EDIDText.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace EDIDKit {

namespace {

constexpr std::array<std::uint8_t, 8> header{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};

bool looksLikeText(std::span<const std::uint8_t> input) {
    return std::all_of(input.begin(), input.end(), [](std::uint8_t c) {
        return c == '\n' || c == '\r' || c == '\t' || (c >= 0x20 && c < 0x7F);
    });
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// The part of an edid-decode report that holds the hex dump: the lines after
/// "edid-decode (hex):" up to the "----" line that starts the decoded text.
std::string_view hexSection(std::string_view text) {
    constexpr std::string_view marker = "edid-decode (hex):";
    const auto at = text.find(marker);
    if (at == std::string_view::npos) return text;
    std::string_view rest = text.substr(at + marker.size());
    const auto end = rest.find("\n----");
    return end == std::string_view::npos ? rest : rest.substr(0, end);
}

} // namespace

Bytes bytesFromEDIDInput(std::span<const std::uint8_t> input) {
    const bool binaryHeader = input.size() >= header.size() &&
                              std::equal(header.begin(), header.end(), input.begin());
    if (binaryHeader || !looksLikeText(input) || input.empty())
        return Bytes(input.begin(), input.end());

    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    const std::string_view hex = hexSection(text);
    int line = 1 + static_cast<int>(std::count(text.data(), hex.data(), '\n'));
    const auto fail = [&](const std::string& what) {
        throw EDIDTextError("the text is not a hex dump (" + what + " on line " +
                            std::to_string(line) + ")");
    };
    Bytes out;
    std::size_t i = 0;
    while (i < hex.size()) {
        const char c = hex[i];
        if (c == ' ' || c == '\t' || c == '\r' || c == ',' || c == '\n') {
            line += c == '\n';
            ++i;
            continue;
        }
        // One token: an optional "0x", then hex digits, two per byte.
        if (c == '0' && i + 1 < hex.size() && (hex[i + 1] == 'x' || hex[i + 1] == 'X')) i += 2;
        std::size_t digits = 0;
        for (; i < hex.size() && hexValue(hex[i]) >= 0; ++i, ++digits) {
            if (digits % 2 == 1)
                out.push_back(static_cast<std::uint8_t>(hexValue(hex[i - 1]) << 4 | hexValue(hex[i])));
        }
        if (i < hex.size() && std::string_view(" \t\r\n,").find(hex[i]) == std::string_view::npos)
            fail("unexpected '" + std::string(1, hex[i]) + "'");
        if (digits == 0 || digits % 2 == 1) fail("a byte needs two hex digits");
    }
    if (out.empty()) throw EDIDTextError("the text holds no hex bytes");
    return out;
}

std::string hexDump(std::span<const std::uint8_t> bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 3 + bytes.size() / 16 + 1);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out += digits[bytes[i] >> 4];
        out += digits[bytes[i] & 0x0F];
        out += (i % 16 == 15 || i + 1 == bytes.size()) ? '\n' : ' ';
    }
    return out;
}

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

} // namespace EDIDKit
