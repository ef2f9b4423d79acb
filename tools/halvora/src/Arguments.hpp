#pragma once

#include "CliIO.hpp"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Halvora {

/// A command's arguments: positional words, flags (`--hex`) and options with a
/// value (`-o OUT`, `--native=3440x1440`). "-" alone is a positional word
/// (standard input); "--" ends the options.
class Arguments {
public:
    /// Throws a usage error for an unknown option or an option without its value.
    Arguments(const std::vector<std::string>& words, const std::set<std::string>& flags,
              const std::set<std::string>& valued);

    bool has(const std::string& flag) const { return flags_.contains(flag); }
    std::optional<std::string> value(const std::string& option) const;
    const std::vector<std::string>& positional() const { return positional_; }

    /// Throws a usage error unless there are between `min` and `max` positional words.
    void expectPositional(std::size_t min, std::size_t max, const std::string& usage) const;

private:
    std::set<std::string> flags_;
    std::map<std::string, std::string> values_;
    std::vector<std::string> positional_;
};

} // namespace Halvora
