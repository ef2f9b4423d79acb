#include "Arguments.hpp"
#include "Commands.hpp"
#include "HelpTexts.hpp"
#include "Simulator.hpp"

#include <filesystem>
#include <fstream>
#include <istream>
#include <random>

namespace Halvora {

namespace {

/// A settings file that lives only as long as the run.
class TemporarySettings {
public:
    TemporarySettings() {
        std::random_device random;
        folder_ = std::filesystem::temp_directory_path() /
                  ("halvora-simulate-" + std::to_string(random()));
        std::filesystem::create_directories(folder_);
    }
    ~TemporarySettings() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    TemporarySettings(const TemporarySettings&) = delete;
    TemporarySettings& operator=(const TemporarySettings&) = delete;
    std::filesystem::path file() const { return folder_ / "displays.json"; }

private:
    std::filesystem::path folder_;
};

} // namespace

int simulateCommand(const std::vector<std::string>& words, CliIO& io) {
    for (const auto& w : words)
        if (w == "--help" || w == "-h") return io.out << simulateHelp, exitSuccess;
    const Arguments args(words, {"--strict", "--safe"}, {"--rig", "--settings", "--script"});
    args.expectPositional(
        0, 0,
        "halvora simulate [--rig FILE] [--settings FILE] [--script FILE|-] [--strict] [--safe]");

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
            io.err << "halvora: line " << lineNumber << ": " << simulator.lastFailure() << "\n";
            return exitBadData;
        }
    }
    if (interactive) io.out << "\n";
    return exitSuccess;
}

} // namespace Halvora
