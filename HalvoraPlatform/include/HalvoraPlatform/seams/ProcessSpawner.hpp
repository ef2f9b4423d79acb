#pragma once

#include <optional>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// Starting a program and waiting for it, as POSIX does it.
class ProcessSpawner {
public:
    /// How a process ended.
    struct Ending {
        bool bySignal = false;
        int code = 0; ///< the exit code, or the signal
    };

    virtual ~ProcessSpawner() = default;
    /// posix_spawn of `path` (no shell) with `arguments` (argv[0] included),
    /// the process's environment, and standard output and error opened
    /// write-only on /dev/null. The process ID, or nothing when it could not start.
    virtual std::optional<int> spawn(const std::string& path,
                                     const std::vector<std::string>& arguments) = 0;
    /// waitpid with WNOHANG: how it ended, or nothing while it still runs.
    virtual std::optional<Ending> poll(int process) = 0;
    /// kill(process, SIGKILL), then a blocking waitpid.
    virtual void killAndReap(int process) = 0;
    virtual void sleepMilliseconds(int milliseconds) = 0;
};

} // namespace HalvoraPlatform
