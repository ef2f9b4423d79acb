#pragma once

#include <functional>
#include <string>

namespace HalvoraPlatform {

/// Where diagnostics go: one line each, beginning "Halvora Pro: ". Never shown
/// to the user.
using LogSink = std::function<void(const std::string& line)>;

/// The system log: os_log on macOS, standard error elsewhere.
void systemLog(const std::string& line);

} // namespace HalvoraPlatform
