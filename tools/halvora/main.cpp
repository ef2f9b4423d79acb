#include "src/Commands.hpp"
#include "src/DescriptorOutput.hpp"

#include <iostream>
#include <unistd.h>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    // Standard output through a buffer that keeps the reason of a failed
    // write, so that a full disk or a closed pipe is reported, not ignored.
    Halvora::DescriptorOutput standardOutput(STDOUT_FILENO);
    std::ostream out(&standardOutput);
    std::cin.tie(&out);  // a prompt is out before input is read
    std::cerr.tie(&out); // and output before a message about it
    Halvora::CliIO io{
        std::cin, out, std::cerr, ::isatty(STDOUT_FILENO) == 1, ::isatty(STDIN_FILENO) == 1, [&] {
            return standardOutput.failure();
        }};
    const int status = Halvora::runHalvora({argv + 1, argv + argc}, io);
    std::cin.tie(nullptr); // `out` ends with main
    std::cerr.tie(nullptr);
    return status;
}
