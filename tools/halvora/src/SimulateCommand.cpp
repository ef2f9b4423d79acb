#include "Arguments.hpp"
#include "Commands.hpp"
#include "HelpTexts.hpp"
#include "Simulator.hpp"
#include "TemporarySettings.hpp"

#include <filesystem>
#include <fstream>
#include <istream>

namespace Halvora {

int simulateCommand(const std::vector<std::string>& words, CliIO& io) {
    for (const auto& w : words)
        if (w == "--help" || w == "-h") return io.out << simulateHelp, exitSuccess;
    const Arguments args(words, {"--strict", "--safe"}, {"--rig", "--settings", "--script"});
    args.expectPositional(
        0, 0, "halvora simulate [--rig FILE] [--settings FILE] [--script FILE|-] [--strict] [--safe]");

    Rig rig;
    try {
        rig = args.value("--rig") ? Rig::load(*args.value("--rig")) : Rig::builtIn();
    } catch (const RigError& error) {
        throw dataError(error.what());
    }

    std::ifstream scriptFile;
    std::istream* script = &io.in;
    const auto scriptPath = args.value("--script");
    if (scriptPath && *scriptPath != "-") {
        scriptFile.open(*scriptPath);
        if (!scriptFile) throw dataError("cannot read " + *scriptPath);
        script = &scriptFile;
    }
    const bool interactive = !scriptPath && io.inIsTerminal;

    std::optional<TemporarySettings> temporary;
    std::filesystem::path settings;
    if (const auto given = args.value("--settings")) {
        settings = *given;
    } else {
        temporary.emplace();
        settings = temporary->file();
    }

    Simulator simulator(std::move(rig), settings, io.out, args.has("--safe"));
    if (interactive) io.out << "Type 'help' for the commands, Ctrl-D to end.\n";
    int lineNumber = 0;
    for (std::string line;;) {
        if (interactive) io.out << "halvora> " << std::flush;
        if (!std::getline(*script, line)) break;
        ++lineNumber;
        if (!interactive && line.find_first_not_of(" \t\r") != std::string::npos &&
            line.front() != '#')
            io.out << "> " << line << "\n";
        if (!simulator.execute(line) && args.has("--strict")) {
            io.err << "halvora: line " << lineNumber << ": the command could not be carried out\n";
            return exitBadData;
        }
    }
    if (interactive) io.out << "\n";
    return exitSuccess;
}

} // namespace Halvora
