#include <HalvoraPro/LocalizedStrings.hpp>
#include <fstream>
#include <sstream>

namespace HalvoraPro {

// The English table's bytes, built into the program from Resources/en.lproj.
std::string_view englishStringsTable();

std::vector<char> placeholders(std::string_view format) {
    std::vector<char> found;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') continue;
        if (i + 1 >= format.size())
            throw TextFormatError("a lone % ends \"" + std::string(format) + "\"");
        const char c = format[++i];
        if (c == '%') continue;
        if (c != '@' && c != 'd')
            throw TextFormatError(std::string("unsupported placeholder %") + c + " in \"" +
                                  std::string(format) + "\"");
        found.push_back(c);
    }
    return found;
}

std::string formatText(std::string_view format, const std::vector<TextArgument>& arguments) {
    const auto wanted = placeholders(format);
    if (wanted.size() != arguments.size())
        throw TextFormatError("\"" + std::string(format) + "\" takes " +
                              std::to_string(wanted.size()) + " values, not " +
                              std::to_string(arguments.size()));
    std::string out;
    std::size_t next = 0;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            out += format[i];
            continue;
        }
        const char c = format[++i];
        if (c == '%') {
            out += '%';
            continue;
        }
        const TextArgument& argument = arguments[next++];
        if (c == '@') {
            const auto* s = std::get_if<std::string>(&argument);
            if (!s) throw TextFormatError("%@ in \"" + std::string(format) + "\" needs a string");
            out += *s;
        } else {
            const auto* n = std::get_if<long long>(&argument);
            if (!n) throw TextFormatError("%d in \"" + std::string(format) + "\" needs an integer");
            out += std::to_string(*n);
        }
    }
    return out;
}

namespace {

/// Reads a strings table one token at a time, keeping the line for errors.
class StringsReader {
public:
    explicit StringsReader(std::string_view text) : text_(text) {}

    /// Skips white space and comments; false at the end of the text.
    bool skipToToken() {
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (c == '\n') {
                ++line_;
                ++pos_;
            } else if (c == ' ' || c == '\t' || c == '\r') {
                ++pos_;
            } else if (text_.substr(pos_, 2) == "//") {
                while (pos_ < text_.size() && text_[pos_] != '\n')
                    ++pos_;
            } else if (text_.substr(pos_, 2) == "/*") {
                const auto end = text_.find("*/", pos_ + 2);
                if (end == std::string_view::npos) fail("a comment is not closed");
                for (std::size_t i = pos_; i < end; ++i)
                    if (text_[i] == '\n') ++line_;
                pos_ = end + 2;
            } else {
                return true;
            }
        }
        return false;
    }

    std::string quoted() {
        if (!skipToToken() || text_[pos_] != '"') fail("a quoted string was expected");
        ++pos_;
        std::string value;
        while (true) {
            if (pos_ >= text_.size()) fail("a string is not closed");
            const char c = text_[pos_++];
            if (c == '"') return value;
            if (c == '\n') ++line_;
            if (c != '\\') {
                value += c;
                continue;
            }
            if (pos_ >= text_.size()) fail("a string is not closed");
            switch (const char e = text_[pos_++]) {
            case 'n':
                value += '\n';
                break;
            case 't':
                value += '\t';
                break;
            case '"':
            case '\\':
            case '\'':
                value += e;
                break;
            default:
                fail(std::string("unknown escape \\") + e);
            }
        }
    }

    void expect(char c) {
        if (!skipToToken() || text_[pos_] != c) fail(std::string("'") + c + "' was expected");
        ++pos_;
    }

    [[noreturn]] void fail(const std::string& message) const {
        throw StringsFormatError(message, line_);
    }
    int line() const { return line_; }

private:
    std::string_view text_;
    std::size_t pos_ = 0;
    int line_ = 1;
};

} // namespace

LocalizedStrings LocalizedStrings::parse(std::string_view content) {
    if (content.substr(0, 3) == "\xEF\xBB\xBF") content.remove_prefix(3);
    LocalizedStrings table;
    StringsReader reader(content);
    while (reader.skipToToken()) {
        const int line = reader.line();
        std::string key = reader.quoted();
        reader.expect('=');
        std::string value = reader.quoted();
        reader.expect(';');
        if (!table.entries_.emplace(std::move(key), std::move(value)).second)
            throw StringsFormatError("a key is defined twice", line);
    }
    return table;
}

LocalizedStrings LocalizedStrings::load(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + file.string());
    std::ostringstream content;
    content << in.rdbuf();
    return parse(content.str());
}

const LocalizedStrings& LocalizedStrings::english() {
    static const LocalizedStrings table = parse(englishStringsTable());
    return table;
}

std::optional<std::string> LocalizedStrings::lookup(const std::string& key) const {
    const auto found = entries_.find(key);
    if (found == entries_.end()) return std::nullopt;
    return found->second;
}

std::string LocalizedStrings::resolve(const Text& text) const {
    if (text.verbatim) return *text.verbatim;
    const auto format = lookup(text.key);
    if (!format) return text.key;
    return formatText(*format, text.arguments);
}

} // namespace HalvoraPro
