// The manual page, the README and the tool's own help describe one tool: every
// command and option that one of them names, the others name too.

#include "Commands.hpp"
#include "Simulator.hpp"

#include <HalvoraCore/PBPBehavior.hpp>
#include <HalvoraSimulation/RecordedMonitor.hpp>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

using namespace Halvora;

namespace {

std::string readSource(const std::string& relative) {
    std::ifstream in(std::string(HALVORA_SOURCE_DIR) + "/" + relative, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + relative);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string help(std::vector<std::string> args) {
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    CliIO io{in, out, err, false};
    if (runHalvora(args, io) != 0) throw std::runtime_error("help failed: " + err.str());
    return out.str();
}

/// A macro line's arguments: words, or text in double quotes.
std::vector<std::string> macroArguments(const std::string& text) {
    std::vector<std::string> arguments;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ') {
            ++i;
        } else if (text[i] == '"') {
            const auto end = text.find('"', i + 1);
            arguments.push_back(
                text.substr(i + 1, end == std::string::npos ? std::string::npos : end - i - 1));
            i = end == std::string::npos ? text.size() : end + 1;
        } else {
            const auto end = text.find(' ', i);
            arguments.push_back(
                text.substr(i, end == std::string::npos ? std::string::npos : end - i));
            i = end == std::string::npos ? text.size() : end;
        }
    }
    return arguments;
}

/// One line of the page as a reader sees it: comments dropped; a font macro's
/// arguments joined as roff sets them (the alternating ones, `.BR` and its
/// kin, without spaces between); font changes and escaped hyphens made plain.
std::string plainLine(std::string line) {
    if (line.rfind(".\\\"", 0) == 0) return "";
    if (!line.empty() && line.front() == '.') {
        const auto space = line.find(' ');
        const std::string macro =
            line.substr(1, space == std::string::npos ? std::string::npos : space - 1);
        const auto arguments =
            macroArguments(space == std::string::npos ? "" : line.substr(space + 1));
        const bool alternating =
            macro.size() == 2 && macro.find_first_not_of("BIR") == std::string::npos;
        line.clear();
        for (const auto& argument : arguments)
            line += (line.empty() || alternating ? "" : " ") + argument;
    }
    line = std::regex_replace(line, std::regex(R"(\\f[BIRP])"), "");
    return std::regex_replace(line, std::regex(R"(\\-)"), "-");
}

/// The page's sections by heading (`.SH NAME`), each as its lines.
std::map<std::string, std::vector<std::string>> manualSections() {
    std::map<std::string, std::vector<std::string>> sections;
    std::istringstream page(readSource("tools/halvora/halvora.1"));
    std::string current;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind(".SH ", 0) == 0) {
            current = line.substr(4);
            current.erase(std::remove(current.begin(), current.end(), '"'), current.end());
            continue;
        }
        sections[current].push_back(line);
    }
    return sections;
}

std::string plainText(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines)
        text += plainLine(line) + "\n";
    return text;
}

/// Every option word (`--json`, `-o`) in a text.
std::set<std::string> optionsIn(const std::string& text) {
    std::set<std::string> options;
    const std::regex option(R"((?:^|[^A-Za-z0-9-])(--?[a-z][a-z0-9-]*))");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), option);
         it != std::sregex_iterator(); ++it)
        options.insert((*it)[1]);
    return options;
}

/// The first word of each alternative of a synopsis ("plug NAME | unplug NAME").
std::set<std::string> commandWords(const std::string& synopsis) {
    std::set<std::string> words;
    std::istringstream alternatives(std::regex_replace(synopsis, std::regex(R"( \| )"), "\n"));
    for (std::string alternative; std::getline(alternatives, alternative);) {
        std::istringstream first(alternative);
        std::string word;
        if (first >> word) words.insert(word);
    }
    return words;
}

/// The first words of the headings of a section's own tagged paragraphs
/// (`.TP`), leaving out those indented under one of them (`.RS` … `.RE`).
std::set<std::string> headingWords(const std::vector<std::string>& section) {
    std::set<std::string> words;
    int depth = 0;
    for (std::size_t i = 0; i + 1 < section.size(); ++i) {
        if (section[i] == ".RS") ++depth;
        if (section[i] == ".RE") --depth;
        if (section[i] == ".TP" && depth == 0)
            for (const auto& word : commandWords(plainLine(section[i + 1])))
                words.insert(word);
    }
    return words;
}

std::string allHelp() {
    std::string text = help({"--help"});
    for (const char* command : {"decode", "split", "merge", "cvt", "simulate"})
        text += help({command, "--help"});
    return text + Simulator::help();
}

/// The commands the simulator's help lists: the first word of each
/// alternative of each synopsis (a row's text up to its description).
std::set<std::string> simulatorCommands() {
    std::set<std::string> words;
    std::istringstream help(Simulator::help());
    std::string line;
    std::getline(help, line); // the heading
    while (std::getline(help, line)) {
        if (line.size() < 3 || line[2] == ' ') continue; // a description's continuation
        const std::string synopsis = line.substr(2, line.find("  ", 2) - 2);
        for (const auto& word : commandWords(synopsis))
            words.insert(word);
    }
    return words;
}

} // namespace

TEST(ManualPage, NamesEveryOptionTheHelpListsAndNoOther) {
    const auto sections = manualSections();
    std::string page;
    for (const auto& [heading, lines] : sections)
        page += plainText(lines);
    EXPECT_EQ(optionsIn(page), optionsIn(allHelp()));
}

TEST(ManualPage, DescribesEachCommandTheHelpListsAndNoOther) {
    const std::string mainHelp = help({"--help"});
    std::set<std::string> listed;
    const std::regex row(R"(\n  ([a-z]+) )");
    for (auto it = std::sregex_iterator(mainHelp.begin(), mainHelp.end(), row);
         it != std::sregex_iterator(); ++it)
        listed.insert((*it)[1]);
    listed.erase("halvora");
    EXPECT_EQ(listed, (std::set<std::string>{"cvt", "decode", "merge", "simulate", "split"}));
    EXPECT_EQ(headingWords(manualSections().at("COMMANDS")), listed);
}

TEST(ManualPage, DescribesEachSimulatorCommandAndNoOther) {
    EXPECT_EQ(headingWords(manualSections().at("SIMULATOR COMMANDS")), simulatorCommands());
}

TEST(ManualPage, TheExitStatusesAreTheOnesTheHelpStates) {
    const std::string mainHelp = help({"--help"});
    EXPECT_NE(mainHelp.find("Exit status: 0 done, 1 bad or unusable data"), std::string::npos);
    EXPECT_NE(mainHelp.find("2 bad usage."), std::string::npos);
    EXPECT_EQ(headingWords(manualSections().at("EXIT STATUS")),
              (std::set<std::string>{"0", "1", "2"}));
}

TEST(ManualPage, TheReadmeAndTheHelpNameEverySimulatorCommand) {
    const std::string readme = readSource("README.md");
    const std::string simulatorHelp = Simulator::help();
    for (const auto& command : simulatorCommands()) {
        EXPECT_NE(readme.find("`" + command), std::string::npos)
            << command << " is missing from the README";
        EXPECT_NE(simulatorHelp.find(command), std::string::npos) << command;
    }
}

TEST(ManualPage, TheRigFormatsValuesAreTheOnesTheRigReaderTakes) {
    using HalvoraSimulation::WriteAlteration;
    using HalvoraCore::PBPBehavior;
    const std::string page = plainText(manualSections().at("RIG FILES"));
    const std::string readme = readSource("README.md");
    const std::string simulateHelp = help({"simulate", "--help"});
    std::vector<std::string> values;
    for (const auto behavior : {PBPBehavior::switchesOnToggle, PBPBehavior::latchedAtPlug,
                                PBPBehavior::fixedMissingSplit, PBPBehavior::fixedWithSplit})
        values.emplace_back(HalvoraCore::rawValue(behavior));
    for (const auto alteration :
         {HalvoraSimulation::WriteAlteration::serial, HalvoraSimulation::WriteAlteration::checksum,
          HalvoraSimulation::WriteAlteration::extensions})
        values.emplace_back(HalvoraSimulation::writeAlterationName(alteration));
    for (const auto& value : values) {
        EXPECT_NE(page.find(value), std::string::npos)
            << value << " is missing from the manual page";
        EXPECT_NE(readme.find(value), std::string::npos) << value << " is missing from the README";
        EXPECT_NE(simulateHelp.find(value), std::string::npos)
            << value << " is missing from simulate --help";
    }
}
