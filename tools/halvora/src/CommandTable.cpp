#include "CommandTable.hpp"

namespace Halvora {

namespace {

constexpr std::size_t indent = 2;
constexpr std::size_t synopsisColumn = 31;

} // namespace

std::string tableHelp(std::string_view heading,
                      const std::vector<std::pair<std::string_view, std::string_view>>& rows) {
    const std::string under(indent + synopsisColumn, ' ');
    std::string out(heading);
    out += '\n';
    for (const auto& [synopsis, description] : rows) {
        out += std::string(indent, ' ');
        out += synopsis;
        if (synopsis.size() < synopsisColumn)
            out += std::string(synopsisColumn - synopsis.size(), ' ');
        else
            out += '\n' + under;
        std::size_t start = 0;
        for (std::size_t end; (end = description.find('\n', start)) != std::string_view::npos;
             start = end + 1) {
            out += description.substr(start, end - start);
            out += '\n' + under;
        }
        out += description.substr(start);
        out += '\n';
    }
    return out;
}

} // namespace Halvora
