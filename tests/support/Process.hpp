#pragma once

#include <optional>
#include <string>
#include <vector>

namespace TestSupport {

struct ProcessResult {
    int exitStatus = -1; ///< -1 when the process was killed by a signal
    std::string output;  ///< standard output
    std::string errors;  ///< standard error
};

/// Runs a program found on PATH with these arguments and collects its output.
/// Absent when the program cannot be started.
std::optional<ProcessResult> runProcess(const std::vector<std::string>& argv,
                                        const std::string& input = "");

/// Whether a program of this name is on PATH.
bool isOnPath(const std::string& program);

} // namespace TestSupport
