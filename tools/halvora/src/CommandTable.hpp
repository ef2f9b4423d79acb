#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Halvora {

/// One command of a command table: the first words that call it, how the
/// help lists it (a synopsis and a description, which may run over several
/// lines), and what carries it out with the line's words.
template <typename Target> struct TableCommand {
    std::vector<std::string_view> names;
    std::string_view synopsis;
    std::string_view description;
    void (Target::*run)(const std::vector<std::string>& words);
};

/// The help rows: each synopsis in a column of its own, its description
/// beside it (or on the next line when the synopsis is wider than the column),
/// continuation lines under the description.
std::string tableHelp(std::string_view heading,
                      const std::vector<std::pair<std::string_view, std::string_view>>& rows);

/// The help of a command table.
template <typename Target>
std::string tableHelp(std::string_view heading, const std::vector<TableCommand<Target>>& table) {
    std::vector<std::pair<std::string_view, std::string_view>> rows;
    for (const auto& command : table) rows.emplace_back(command.synopsis, command.description);
    return tableHelp(heading, rows);
}

/// The command of the table that `word` calls; nullptr when none does.
template <typename Target>
const TableCommand<Target>* findCommand(const std::vector<TableCommand<Target>>& table, std::string_view word) {
    for (const auto& command : table)
        for (const auto name : command.names)
            if (name == word) return &command;
    return nullptr;
}

} // namespace Halvora
