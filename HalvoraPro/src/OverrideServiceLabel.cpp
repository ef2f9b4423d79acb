#include <HalvoraPro/OverrideServiceLabel.hpp>
#include <algorithm>

namespace HalvoraPro {

namespace {

std::string trimmed(const std::string& text) {
    const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto last = std::find_if_not(text.rbegin(), text.rend(), isSpace).base();
    return first < last ? std::string(first, last) : std::string();
}

} // namespace

bool OverrideServiceLabel::isValid(const std::string& label) {
    return std::all_of(label.begin(), label.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '.' || c == '-' || c == '_';
    });
}

std::string OverrideServiceLabel::choose(const std::string& buildSetting,
                                         const std::optional<std::string>& userDefault,
                                         const HalvoraPlatform::LogSink& log) {
    if (!userDefault) return buildSetting;
    const std::string label = trimmed(*userDefault);
    if (isValid(label)) return label;
    if (log)
        log("Halvora Pro: the user default edidOverrideServiceLabel (\"" + *userDefault +
            "\") is no launchd label; looking for \"" + buildSetting + "\"");
    return buildSetting;
}

} // namespace HalvoraPro
