#include "SelfTest.hpp"

#include "Arguments.hpp"
#include "CliIO.hpp"
#include "SelfTestObserver.hpp"
#include "TemporarySettings.hpp"

#include <fstream>

namespace Halvora {

std::optional<SelfTest> SelfTest::parse(const std::vector<std::string>& words) {
    for (const auto& w : words)
        if (w == "--help" || w == "-h") return std::nullopt;
    const Arguments args(words, {}, {"--simulate", "--rig", "--screenshots"});
    args.expectPositional(0, 0, usage);
    const auto script = args.value("--simulate");
    if (!script) throw usageError(std::string("--simulate SCRIPT is needed\n") + usage);
    SelfTest test{*script, std::nullopt, std::nullopt};
    if (const auto rig = args.value("--rig")) test.rig = *rig;
    if (const auto screenshots = args.value("--screenshots")) test.screenshots = *screenshots;
    return test;
}

const char* SelfTest::help() {
    return R"(usage: halvora-pro-selftest --simulate SCRIPT [--rig FILE] [--screenshots DIR]

Runs Halvora Pro's own menu, panels, identification window and alerts, drawn
by AppKit, over a recorded machine instead of the Mac's displays, and carries
out the simulator's script on them (see 'halvora simulate --help'): menu items
are chosen and buttons pressed through their controls. After each command it
checks that the screen shows exactly the windows the application shows.

  --simulate SCRIPT   the commands, one a line
  --rig FILE          the machine (default: the built-in ultrawide-34 and
                      superwide-49)
  --screenshots DIR   write each window as it appears or changes, as a
                      numbered PNG file

Exit status: 0 every command was carried out and every window appeared;
1 a command failed or the screen disagreed; 2 bad usage or unusable files.
)";
}

int SelfTest::run(Simulator::RealViews views, Screen& screen, std::ostream& out,
                  std::ostream& err) const {
    Rig machine;
    try {
        machine = rig ? Rig::load(*rig) : Rig::builtIn();
    } catch (const RigError& error) {
        err << "self-test: " << error.what() << "\n";
        return exitBadUsage;
    }
    std::ifstream lines(script);
    if (!lines) {
        err << "self-test: cannot read " << script.string() << "\n";
        return exitBadUsage;
    }
    if (screenshots) {
        std::error_code error;
        std::filesystem::create_directories(*screenshots, error);
        if (error) {
            err << "self-test: cannot make " << screenshots->string() << ": " << error.message()
                << "\n";
            return exitBadUsage;
        }
    }

    const TemporarySettings settings;
    Simulator simulator(std::move(machine), settings.file(), out, false, std::move(views));
    SelfTestObserver observer(screen, screenshots);
    int status = exitSuccess;
    const auto report = [&](int lineNumber, const std::vector<std::string>& problems) {
        for (const auto& problem : problems) {
            err << "self-test: line " << lineNumber << ": " << problem << "\n";
            status = exitBadData;
        }
    };
    report(0, observer.check(simulator.windowsShown()));
    int lineNumber = 0;
    for (std::string line; std::getline(lines, line);) {
        ++lineNumber;
        if (line.find_first_not_of(" \t\r") == std::string::npos || line.front() == '#') continue;
        out << "> " << line << "\n";
        if (!simulator.execute(line)) {
            err << "self-test: line " << lineNumber << ": the command could not be carried out\n";
            return exitBadData;
        }
        report(lineNumber, observer.check(simulator.windowsShown()));
    }
    out << "self-test: " << lineNumber << " lines, " << observer.written().size() << " screenshots"
        << (status == exitSuccess ? ", every window appeared\n" : ", the screen disagreed\n");
    return status;
}

} // namespace Halvora
