#include "Arguments.hpp"

#include <cctype>

namespace Halvora {

namespace {

/// "-1720" or "-.5": a negative number, which no option looks like, is an
/// argument (for the command to judge), not an unknown option.
bool isNegativeNumber(const std::string& word) {
    return word.size() > 1 && word[0] == '-' &&
           (std::isdigit(static_cast<unsigned char>(word[1])) || word[1] == '.');
}

} // namespace

Arguments::Arguments(const std::vector<std::string>& words, const std::set<std::string>& flags,
                     const std::set<std::string>& valued) {
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (optionsEnded || word == "-" || word.empty() || word[0] != '-' ||
            isNegativeNumber(word)) {
            positional_.push_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        std::string name = word;
        std::optional<std::string> inlineValue;
        if (const auto eq = word.find('='); eq != std::string::npos && word.starts_with("--")) {
            name = word.substr(0, eq);
            inlineValue = word.substr(eq + 1);
        }
        if (flags.contains(name)) {
            if (inlineValue) throw usageError(name + " takes no value (not '" + word + "')");
            flags_.insert(name);
        } else if (valued.contains(name)) {
            if (inlineValue) {
                values_[name] = *inlineValue;
            } else if (i + 1 < words.size()) {
                values_[name] = words[++i];
            } else {
                throw usageError(name + " needs a value");
            }
        } else {
            throw usageError("unknown option " + name);
        }
    }
}

std::optional<std::string> Arguments::value(const std::string& option) const {
    const auto it = values_.find(option);
    if (it == values_.end()) return std::nullopt;
    return it->second;
}

void Arguments::expectPositional(std::size_t min, std::size_t max, const std::string& usage) const {
    if (positional_.size() < min) throw usageError("missing arguments; usage: " + usage);
    if (positional_.size() > max)
        throw usageError("unexpected argument '" + positional_[max] + "'; usage: " + usage);
}

} // namespace Halvora
