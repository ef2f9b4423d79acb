#pragma once

#include "Screen.hpp"
#include "Simulator.hpp"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Halvora {

/// The self-test build of the application: it runs a simulator script on the
/// real views over the recorded machine, checks after every command that the
/// screen shows the windows the application shows, and captures each window.
struct SelfTest {
    std::filesystem::path script;
    /// The machine (the built-in rig without it).
    std::optional<std::filesystem::path> rig;
    /// Where the PNG pictures go (none without it).
    std::optional<std::filesystem::path> screenshots;

    static constexpr const char* usage =
        "usage: halvora-pro-selftest --simulate SCRIPT [--rig FILE] [--screenshots DIR]";

    /// Reads the arguments after the program name; throws a usage CliError.
    /// Empty for --help (the caller prints `help`).
    static std::optional<SelfTest> parse(const std::vector<std::string>& words);
    static const char* help();

    /// Runs the script; 0 when every command was carried out and the screen
    /// agreed after each one, 1 otherwise (2: the script or rig is unusable).
    int run(Simulator::RealViews views, Screen& screen, std::ostream& out, std::ostream& err) const;
};

} // namespace Halvora
