#pragma once

#include <HalvoraPro/Text.hpp>

#include <ostream>
#include <variant>

namespace HalvoraPro {

/// Texts print as key(arguments) in failure messages.
inline void PrintTo(const Text& text, std::ostream* os) {
    if (text.verbatim) {
        *os << '"' << *text.verbatim << '"';
        return;
    }
    *os << text.key << "(";
    for (std::size_t i = 0; i < text.arguments.size(); ++i) {
        if (i) *os << ", ";
        std::visit([os](const auto& v) { *os << v; }, text.arguments[i]);
    }
    *os << ")";
}

} // namespace HalvoraPro
