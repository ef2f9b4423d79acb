#pragma once

#include <HalvoraPro/Text.hpp>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace HalvoraPro {

/// A `.strings` file that cannot be read, with the line where reading stopped.
class StringsFormatError : public std::runtime_error {
public:
    StringsFormatError(const std::string& message, int line)
        : std::runtime_error("line " + std::to_string(line) + ": " + message), line_(line) {}
    int line() const noexcept { return line_; }

private:
    int line_;
};

/// A format string that does not fit the arguments given to it.
class TextFormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The placeholders of a format string in order: '@' for `%@`, 'd' for `%d`
/// (`%%` is a literal percent sign). Throws TextFormatError for any other
/// conversion.
std::vector<char> placeholders(std::string_view format);

/// Fills `%@` with strings and `%d` with integers, in order; `%%` is "%".
/// Throws TextFormatError when the arguments do not match the placeholders.
std::string formatText(std::string_view format, const std::vector<TextArgument>& arguments);

/// The application's table of user texts, read from the same
/// `Localizable.strings` file the macOS bundle carries: `"key" = "value";`
/// lines, with C and C++ comments and the escapes \" \\ \n \t.
class LocalizedStrings {
public:
    LocalizedStrings() = default;
    /// Throws StringsFormatError, naming the line, for text that is not a
    /// strings table or that defines a key twice.
    static LocalizedStrings parse(std::string_view content);
    /// Throws std::runtime_error when the file cannot be read, and
    /// StringsFormatError as `parse`.
    static LocalizedStrings load(const std::filesystem::path& file);
    /// The English table that ships with the application
    /// (Resources/en.lproj/Localizable.strings), built into the program.
    static const LocalizedStrings& english();

    std::optional<std::string> lookup(const std::string& key) const;
    /// The text for the user. A key missing from the table shows as the key
    /// itself, as the platform does.
    std::string resolve(const Text& text) const;
    const std::map<std::string, std::string>& entries() const { return entries_; }

private:
    std::map<std::string, std::string> entries_;
};

} // namespace HalvoraPro
