#include "PrintableText.hpp"

#include <cstdio>

namespace Halvora {

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
