#pragma once

// Reading the words of a simulator command line.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace Halvora {

/// A command that cannot be carried out; the simulator says why and goes on.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The line's words, up to a `#` comment.
std::vector<std::string> wordsOf(const std::string& line);
/// Throws "usage: USAGE" unless there are `count` words.
void expectWords(const std::vector<std::string>& words, std::size_t count, const std::string& usage);
/// "on" or "off"; anything else throws "usage: USAGE".
bool onOff(const std::string& word, const std::string& usage);
/// A whole number from 1; anything else throws "usage: USAGE".
std::size_t number(const std::string& word, const std::string& usage);

} // namespace Halvora
