#include "SizeArguments.hpp"

#include <charconv>

namespace Halvora {

std::optional<int> sizeNumber(std::string_view text) {
    int value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size() || value < 1 ||
        value > largestEDIDSize)
        return std::nullopt;
    return value;
}

std::optional<EDIDKit::Resolution> parseResolution(const std::string& text) {
    for (std::string_view separator : {"x", "X", "\u00D7"}) {
        const auto at = text.find(separator);
        if (at == std::string::npos) continue;
        const auto width = sizeNumber(std::string_view(text).substr(0, at));
        const auto height = sizeNumber(std::string_view(text).substr(at + separator.size()));
        if (width && height) return EDIDKit::Resolution{*width, *height};
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace Halvora
