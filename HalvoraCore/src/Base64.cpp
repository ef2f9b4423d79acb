#include <HalvoraCore/Base64.hpp>

namespace HalvoraCore {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int valueOf(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    if (c == '/') return 63;
    return -1;
}

} // namespace

std::string base64Encoded(const EDIDKit::Bytes& bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const unsigned chunk = static_cast<unsigned>(bytes[i]) << 16 |
                               (i + 1 < bytes.size() ? static_cast<unsigned>(bytes[i + 1]) << 8 : 0u) |
                               (i + 2 < bytes.size() ? static_cast<unsigned>(bytes[i + 2]) : 0u);
        out += alphabet[chunk >> 18 & 63];
        out += alphabet[chunk >> 12 & 63];
        out += i + 1 < bytes.size() ? alphabet[chunk >> 6 & 63] : '=';
        out += i + 2 < bytes.size() ? alphabet[chunk & 63] : '=';
    }
    return out;
}

std::optional<EDIDKit::Bytes> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    EDIDKit::Bytes out;
    out.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        std::size_t padding = 0;
        if (last && text[i + 3] == '=') padding = text[i + 2] == '=' ? 2 : 1;
        unsigned chunk = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const int v = k >= 4 - padding ? 0 : valueOf(text[i + k]);
            if (v < 0) return std::nullopt;
            chunk = chunk << 6 | static_cast<unsigned>(v);
        }
        out.push_back(static_cast<std::uint8_t>(chunk >> 16));
        if (padding < 2) out.push_back(static_cast<std::uint8_t>(chunk >> 8 & 0xFF));
        if (padding < 1) out.push_back(static_cast<std::uint8_t>(chunk & 0xFF));
    }
    return out;
}

} // namespace HalvoraCore
