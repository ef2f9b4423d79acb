#include "CommandWords.hpp"

#include <charconv>
#include <sstream>

namespace Halvora {

std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream in(line.substr(0, line.find('#')));
    std::vector<std::string> words;
    for (std::string w; in >> w;)
        words.push_back(w);
    return words;
}

void expectWords(const std::vector<std::string>& words, std::size_t count, const std::string& usage) {
    if (words.size() != count) throw CommandError("usage: " + usage);
}

bool onOff(const std::string& word, const std::string& usage) {
    if (word == "on") return true;
    if (word == "off") return false;
    throw CommandError("usage: " + usage);
}

std::size_t number(const std::string& word, const std::string& usage) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || value == 0)
        throw CommandError("usage: " + usage);
    return value;
}

} // namespace Halvora
