#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace HalvoraPro {

/// A value filled into a localized text: `%@` takes a string, `%d` an integer.
using TextArgument = std::variant<std::string, long long>;

/// A text the user sees, as the shell decides it: a localization key and its
/// arguments, or (for names the monitor itself reports) the words as they are.
/// The views resolve it through the string table.
struct Text {
    std::string key;
    std::vector<TextArgument> arguments;
    std::optional<std::string> verbatim;

    static Text localized(std::string key, std::vector<TextArgument> arguments = {}) {
        return {std::move(key), std::move(arguments), std::nullopt};
    }
    static Text literal(std::string words) { return {{}, {}, std::move(words)}; }

    friend bool operator==(const Text&, const Text&) = default;
};

} // namespace HalvoraPro
