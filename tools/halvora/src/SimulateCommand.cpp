#include "Arguments.hpp"
#include "Commands.hpp"
#include "HelpTexts.hpp"
#include "Simulator.hpp"
#include "TemporarySettings.hpp"

#include <HalvoraPlatform/FileReading.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <istream>
#include <random>
#include <sstream>

namespace Halvora {

namespace {

/// The longest line a script may have: commands are a few words.
constexpr std::size_t maxScriptLine = 4096;
/// The most a script may hold, from a file or piped in: hundreds of
/// thousands of commands, hours of simulated use.
constexpr std::size_t maxScriptSize = std::size_t{16} << 20;

/// The lines of a script, each at most maxScriptLine bytes and all of them at
/// most maxScriptSize: nothing is read without end, whatever the input is.
class ScriptLines {
public:
    ScriptLines(std::istream& in, std::string name, bool interactive)
        : in_(in), name_(std::move(name)), interactive_(interactive) {}

    /// The next line, or false at the end. Throws a data error naming the
    /// script and the line that is too long or past the limit.
    bool next(std::string& line) {
        line.clear();
        auto* buffer = in_.rdbuf();
        if (!buffer) return false;
        bool ended = false;
        for (int c = buffer->sbumpc(); c != std::char_traits<char>::eof(); c = buffer->sbumpc()) {
            // Typed lines have no overall limit: only what is read unattended.
            if (!interactive_ && ++read_ > maxScriptSize)
                throw dataError(name_ + ": the script is larger than " +
                                HalvoraPlatform::sizeInWords(maxScriptSize));
            if (c == '\n') {
                ended = true;
                break;
            }
            if (line.size() == maxScriptLine)
                throw dataError(name_ + ": line " + std::to_string(number_ + 1) +
                                " is longer than " + std::to_string(maxScriptLine) + " characters");
            line.push_back(static_cast<char>(c));
        }
        // The last line may lack its line end; nothing at all is the end.
        if (!ended && line.empty()) return false;
        ++number_;
        return true;
    }
    int number() const { return number_; }

private:
    std::istream& in_;
    std::string name_;
    bool interactive_;
    std::size_t read_ = 0;
    int number_ = 0;
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

    std::istringstream scriptFile;
    std::ifstream scriptPipe;
    std::istream* script = &io.in;
    const auto scriptPath = args.value("--script");
    if (scriptPath && *scriptPath != "-") {
        std::error_code ignored;
        if (std::filesystem::is_fifo(*scriptPath, ignored)) {
            // A pipe (`<(…)`, a FIFO) is followed line by line as it comes.
            scriptPipe.open(*scriptPath, std::ios::binary);
            if (!scriptPipe)
                throw dataError("cannot read " + *scriptPath + ": " + std::strerror(errno));
            script = &scriptPipe;
        } else {
            // A file is read whole; never a folder or a device.
            try {
                scriptFile.str(HalvoraPlatform::readWholeFile(*scriptPath, maxScriptSize));
            } catch (const HalvoraPlatform::FileReadError& error) {
                throw dataError("cannot read " + std::string(error.what()));
            }
            script = &scriptFile;
        }
    }
    const bool interactive = !scriptPath && io.inIsTerminal;
    ScriptLines lines(*script, scriptPath && *scriptPath != "-" ? *scriptPath : "standard input",
                      interactive);

    std::optional<TemporarySettings> temporary;
    std::filesystem::path settings;
    if (const auto given = args.value("--settings")) {
        settings = *given;
    } else {
        temporary.emplace();
        settings = temporary->file();
    }

    Simulator simulator(std::move(rig), settings, io.out, args.has("--safe"));
    if (simulator.launchProblem() && args.has("--strict")) {
        io.err << "halvora: " << *simulator.launchProblem() << "\n";
        return exitBadData;
    }
    if (interactive) io.out << "Type 'help' for the commands, Ctrl-D to end.\n";
    for (std::string line;;) {
        if (interactive) io.out << "halvora> " << std::flush;
        if (!lines.next(line)) break;
        const int lineNumber = lines.number();
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
