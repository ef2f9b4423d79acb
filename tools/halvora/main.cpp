#include "src/Commands.hpp"

#include <iostream>

#include <unistd.h>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    Halvora::CliIO io{std::cin, std::cout, std::cerr, ::isatty(STDOUT_FILENO) == 1,
                       ::isatty(STDIN_FILENO) == 1};
    return Halvora::runHalvora({argv + 1, argv + argc}, io);
}
