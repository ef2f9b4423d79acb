// The simulator's command table and the help it produces.

#include "CommandTable.hpp"
#include "Simulator.hpp"

#include <TemporaryFolder.hpp>
#include <gtest/gtest.h>

#include <sstream>

using namespace Halvora;

namespace {

struct Counter {
    int calls = 0;
    void count(const std::vector<std::string>&) { ++calls; }
};

} // namespace

TEST(CommandTable, DescriptionsLineUpAndAWideSynopsisPutsItsDescriptionOnTheNextLine) {
    const std::string help = tableHelp(
        "Commands:", {{"wait SECONDS", "let time pass,\nrunning what falls due"},
                      {"window confirm|toggle-done|skip|recheck|close", "the window's buttons"}});
    EXPECT_EQ(help, "Commands:\n"
                    "  wait SECONDS                   let time pass,\n"
                    "                                 running what falls due\n"
                    "  window confirm|toggle-done|skip|recheck|close\n"
                    "                                 the window's buttons\n");
}

TEST(CommandTable, ACommandIsFoundByAnyOfItsNamesAndAHelpOnlyRowByNone) {
    const std::vector<TableCommand<Counter>> table{
        {{"sleep", "wake"}, "sleep | wake", "the displays sleep or wake", &Counter::count},
        {{}, "sleep --deep", "only listed", &Counter::count},
    };
    Counter counter;
    for (const auto* word : {"sleep", "wake"}) {
        const auto* command = findCommand(table, word);
        ASSERT_NE(command, nullptr) << word;
        (counter.*(command->run))({word});
    }
    EXPECT_EQ(counter.calls, 2);
    EXPECT_EQ(findCommand(table, ""), nullptr);
    EXPECT_EQ(findCommand(table, "sleep --deep"), nullptr);
    EXPECT_EQ(tableHelp("h", table), "h\n  sleep | wake                   the displays sleep or wake\n"
                                     "  sleep --deep                   only listed\n");
}

TEST(CommandTable, EveryCommandTheSimulatorsHelpListsIsOneItKnows) {
    std::istringstream help(Simulator::help());
    std::string line;
    std::getline(help, line); // the heading
    int listed = 0;
    std::ostringstream out;
    const TestSupport::TemporaryFolder folder;
    Simulator simulator(Rig::builtIn(), folder / "displays.json", out);
    while (std::getline(help, line)) {
        if (line.size() < 3 || line[2] == ' ') continue; // a continuation line
        const std::string word = line.substr(2, line.find(' ', 2) - 2);
        out.str("");
        simulator.execute(word);
        EXPECT_EQ(out.str().find("unknown command"), std::string::npos) << word;
        ++listed;
    }
    EXPECT_EQ(listed, 20);
}
