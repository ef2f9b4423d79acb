#include <DisplayHardware/ModeSpec.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <vector>

namespace DisplayHardware {

namespace {

/// The pieces of `text` between separators, empty pieces dropped.
std::vector<std::string_view> pieces(std::string_view text, char separator) {
    std::vector<std::string_view> out;
    std::size_t start = 0;
    while (start <= text.size()) {
        const auto end = std::min(text.find(separator, start), text.size());
        if (end > start) out.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return out;
}

template <typename Number> std::optional<Number> number(std::string_view text) {
    Number value{};
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

} // namespace

std::string ModeSpec::description() const {
    return std::to_string(width) + "x" + std::to_string(height) + "@" +
           std::to_string(static_cast<long long>(std::trunc(refresh)));
}

std::optional<ModeSpec> ModeSpec::parse(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto parts = pieces(lower, '@');
    if (parts.empty() || parts.size() > 2) return std::nullopt;
    const auto size = pieces(parts[0], 'x');
    if (size.size() != 2) return std::nullopt;
    const auto width = number<int>(size[0]);
    const auto height = number<int>(size[1]);
    if (!width || !height) return std::nullopt;
    ModeSpec spec{*width, *height, 60.0};
    if (parts.size() == 2) {
        const auto refresh = number<double>(parts[1]);
        if (!refresh) return std::nullopt;
        spec.refresh = *refresh;
    }
    return spec;
}

} // namespace DisplayHardware
