#pragma once

// What every fuzz target does when an invariant breaks: say which, and abort
// so that libFuzzer keeps the input.

#include <cstdio>
#include <cstdlib>
#include <string>

namespace FuzzCheck {

[[noreturn]] inline void broken(const std::string& what) {
    std::fprintf(stderr, "invariant broken: %s\n", what.c_str());
    std::abort();
}

inline void require(bool holds, const char* what) {
    if (!holds) broken(what);
}

} // namespace FuzzCheck
