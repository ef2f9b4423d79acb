#pragma once

#include <functional>
#include <iosfwd>
#include <stdexcept>
#include <string>

namespace Halvora {

/// The streams a command talks through, so that tests can run commands in-process.
struct CliIO {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    /// Whether standard output is a terminal (binary EDID data is never written to one).
    bool outIsTerminal = false;
    /// Whether standard input is a terminal (the simulator then prompts).
    bool inIsTerminal = false;
    /// Why writing to `out` failed, once it has ("No space left on device").
    std::function<std::string()> outFailure = {};
};

/// Exit statuses of the command.
enum ExitStatus : int { exitSuccess = 0, exitBadData = 1, exitBadUsage = 2 };

/// A failure that ends a command: its one-line message and exit status.
class CliError : public std::runtime_error {
public:
    CliError(ExitStatus status, const std::string& message)
        : std::runtime_error(message), status_(status) {}
    ExitStatus status() const noexcept { return status_; }

private:
    ExitStatus status_;
};

inline CliError usageError(const std::string& message) {
    return {exitBadUsage, message};
}
inline CliError dataError(const std::string& message) {
    return {exitBadData, message};
}

} // namespace Halvora
