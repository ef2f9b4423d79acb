// A monitor whose port hands our override back with another serial number,
// or with a broken checksum, through the whole life of its split: the menu and
// the saved settings are the same as on a port that hands it back as written.

#include "SimulatorRun.hpp"

#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <TemporaryFolder.hpp>
#include <gtest/gtest.h>

using namespace SimulatorTesting;

namespace {

/// Identify, keep, the menu, a mode switch (remembered), a replug, sleep and
/// wake, quit and relaunch, a factory reset, a split added again, and
/// Identify Again with the split on. A `state` after every step.
const char* const life = R"(
wait 5
menu
click 2               # Identify This Monitor…
window confirm
pbp u34 on            # a latching monitor: an interrupt only
wait 16
wait 4
keep
wait 1
state
window close
menu
click 3               # Split Half
wait 10
state
unplug u34
wait 2
plug u34
wait 10
state
menu
sleep
wait 60
wake
wait 20
state
menu
quit
state
launch
wait 10
state
menu
click 6               # Restore Factory Settings on All Displays
wait 5
state
menu
click 2               # Add Split Resolution
wait 4
keep
wait 5
state
menu
click 4               # Identify Again…
window confirm
window toggle-done
wait 20
window close
state
menu
)";

/// The latching sample ultrawide on a port that alters what is written to it
/// (`alteration`, or not at all when empty), run through `life`.
Run liveThrough(const std::string& alteration) {
    TestSupport::TemporaryFolder folder;
    const auto* sample = EDIDKit::sampleMonitor("ultrawide-34");
    json monitor = {{"name", "u34"},
                    {"full", EDIDKit::hexDump(sample->full)},
                    {"split", EDIDKit::hexDump(*sample->pictureByPicture)},
                    {"behavior", "latchedAtPlug"}};
    if (!alteration.empty()) monitor["alterOnWrite"] = alteration;
    const auto rig = (folder / "rig.json").string();
    TestSupport::writeFile(rig, json{{"monitors", {monitor}}}.dump());
    return simulate({"--rig", rig, "--settings", (folder / "displays.json").string(), "--strict"}, life);
}

/// Every menu the run opened, as printed.
std::vector<std::string> menus(const std::string& out) {
    std::vector<std::string> result;
    std::istringstream lines(out);
    bool inMenu = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("The menu opens:") != std::string::npos) {
            result.emplace_back();
            inMenu = true;
            continue;
        }
        if (inMenu && line.rfind("              ", 0) == 0)
            result.back() += line + "\n";
        else
            inMenu = false;
    }
    return result;
}

/// What the user sees and what is saved, without the count of writes the
/// port took (an altering port re-enumerates on every write).
json seen(json state) {
    for (auto& m : state["monitors"])
        m.erase("overrideWrites");
    state.erase("time");
    return state;
}

class AlteringPortScenario : public ::testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Ports, AlteringPortScenario, ::testing::Values("serial", "checksum"));

} // namespace

TEST(AlteringPortScenarioReference, OnAnUnalteredPortTheSplitIsKeptRestoredResetAndKeptAgain) {
    const auto r = liveThrough("");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    ASSERT_EQ(states.size(), 9u);
    EXPECT_TRUE(states[0]["settings"][0].contains("overrideEDID")) << "kept";
    EXPECT_EQ(states[0]["panels"]["identification"], "finished");
    EXPECT_EQ(states[1]["settings"][0]["lastMode"]["width"], 1720) << "the switch is remembered";
    EXPECT_EQ(monitor(states[2], "u34")["edid"], "override") << "restored after the replug";
    EXPECT_EQ(monitor(states[2], "u34")["mode"], "1720×1440@60");
    EXPECT_EQ(monitor(states[4], "u34")["edid"], "factory-split") << "given back at quit";
    EXPECT_EQ(monitor(states[5], "u34")["edid"], "override") << "restored at launch";
    EXPECT_FALSE(states[6]["settings"][0].contains("overrideEDID")) << "forgotten by the reset";
    EXPECT_TRUE(states[7]["settings"][0].contains("overrideEDID")) << "kept again";
    EXPECT_EQ(states[8]["settings"][0]["overrideEDID"], states[7]["settings"][0]["overrideEDID"])
        << "identifying again with the split on keeps it";
    for (const auto& state : states)
        EXPECT_EQ(state["settings"].size(), 1u) << "one monitor, one record";
}

TEST_P(AlteringPortScenario, ShowsTheSameMenusAndSavesTheSameSettingsAsAnUnalteredPort) {
    const auto reference = liveThrough("");
    const auto altered = liveThrough(GetParam());
    ASSERT_EQ(reference.status, 0) << reference.out << reference.err;
    ASSERT_EQ(altered.status, 0) << altered.out << altered.err;
    EXPECT_EQ(menus(altered.out), menus(reference.out));
    const auto expected = reference.states();
    const auto states = altered.states();
    ASSERT_EQ(states.size(), expected.size());
    for (std::size_t i = 0; i < states.size(); ++i) {
        EXPECT_EQ(states[i]["settings"], expected[i]["settings"]) << "after step " << i;
        EXPECT_EQ(seen(states[i]), seen(expected[i])) << "after step " << i;
    }
    EXPECT_EQ(altered.out.find("Alert:"), std::string::npos) << "nothing to tell the user";
}
