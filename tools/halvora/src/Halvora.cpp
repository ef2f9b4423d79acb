#include "Commands.hpp"
#include "HelpTexts.hpp"

#include <exception>
#include <functional>
#include <map>
#include <ostream>

namespace Halvora {

namespace {

int runCommand(const std::vector<std::string>& args, CliIO& io) {
    using Command = std::function<int(const std::vector<std::string>&, CliIO&)>;
    static const std::map<std::string, Command> commands{{"decode", decodeCommand},
                                                         {"split", splitCommand},
                                                         {"merge", mergeCommand},
                                                         {"cvt", cvtCommand},
                                                         {"simulate", simulateCommand}};
    try {
        if (args.empty()) {
            io.err << mainHelp;
            return exitBadUsage;
        }
        const std::string& name = args.front();
        if (name == "--help" || name == "-h" || name == "help")
            return io.out << mainHelp, exitSuccess;
        if (name == "--version") return io.out << versionText, exitSuccess;
        const auto command = commands.find(name);
        if (command == commands.end())
            throw usageError("unknown command '" + name + "'; see 'halvora --help'");
        return command->second({args.begin() + 1, args.end()}, io);
    } catch (const CliError& error) {
        io.err << "halvora: " << error.what() << "\n";
        return error.status();
    } catch (const std::exception& error) {
        io.err << "halvora: " << error.what() << "\n";
        return exitBadData;
    }
}

} // namespace

int runHalvora(const std::vector<std::string>& args, CliIO& io) {
    const int status = runCommand(args, io);
    // Whatever a command printed counts only once it is out: a full disk or a
    // closed pipe fails the command.
    io.out.flush();
    if (io.out) return status;
    const std::string reason = io.outFailure ? io.outFailure() : "";
    io.err << "halvora: cannot write to standard output" << (reason.empty() ? "" : ": " + reason)
           << "\n";
    return status == exitSuccess ? exitBadData : status;
}

} // namespace Halvora
