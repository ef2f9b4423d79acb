#pragma once

#include "CliIO.hpp"

#include <string>
#include <vector>

namespace Halvora {

/// Each command takes the words after its name and returns its exit status;
/// failures are thrown as CliError.
int decodeCommand(const std::vector<std::string>& args, CliIO& io);
int splitCommand(const std::vector<std::string>& args, CliIO& io);
int mergeCommand(const std::vector<std::string>& args, CliIO& io);
int cvtCommand(const std::vector<std::string>& args, CliIO& io);
int simulateCommand(const std::vector<std::string>& args, CliIO& io);

/// The whole command line after the program name: dispatches to a command,
/// prints help and version, and turns failures into "halvora: …" lines on
/// standard error and an exit status.
int runHalvora(const std::vector<std::string>& args, CliIO& io);

} // namespace Halvora
