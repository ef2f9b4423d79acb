#include <HalvoraPlatform/ModeSpec.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <vector>

namespace HalvoraPlatform {

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
    // A spec built by hand may hold any double; only a representable rate is
    // converted to an integer.
    const std::string rate = std::isfinite(refresh) && std::fabs(refresh) < 1e15
                                 ? std::to_string(static_cast<long long>(std::trunc(refresh)))
                                 : (std::isnan(refresh) ? "nan" : (refresh < 0 ? "-inf" : "inf"));
    return std::to_string(width) + "x" + std::to_string(height) + "@" + rate;
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
    // A mode has a positive size; "-1720x1440" or "0x0" names none.
    if (!width || !height || *width <= 0 || *height <= 0) return std::nullopt;
    ModeSpec spec{*width, *height, 60.0};
    if (parts.size() == 2) {
        // from_chars also reads "nan", "inf" and "-60": no display runs at those.
        const auto refresh = number<double>(parts[1]);
        if (!refresh || !std::isfinite(*refresh) || *refresh <= 0 || *refresh > maximumRefresh) return std::nullopt;
        spec.refresh = *refresh;
    }
    return spec;
}

} // namespace HalvoraPlatform
