// What a user does, on the recorded machine: identifying again, quitting or
// unplugging while a change waits for confirmation, cancelling an
// identification, a factory reset, and a superwide whose EDID prefers its
// whole panel in DisplayID.

#include "SimulatorRun.hpp"

#include <HalvoraCore/Base64.hpp>
#include <TemporaryFolder.hpp>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

using namespace SimulatorTesting;

namespace {

/// A rig of one monitor of the real-EDID corpus: a Samsung S34J55x
/// (3440×1440) whose EDID never offers the 1720×1440 half.
class SamsungScenario : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder folder;
    std::string samsung = std::string(HALVORA_EDID_CORPUS) + "/0795FF497EBB.bin";
    std::string rig = (folder / "rig.json").string();

    void SetUp() override {
        const json r = {
            {"monitors",
             {{{"name", "samsung"}, {"full", samsung}, {"behavior", "fixedMissingSplit"}}}}};
        std::ofstream(rig) << r.dump();
    }
    SimulatorTesting::Run run(const std::string& script) {
        return simulate({"--rig", rig, "--strict"}, script);
    }

    std::string samsungBase64() const {
        std::ifstream in(samsung, std::ios::binary);
        return HalvoraCore::base64Encoded(
            EDIDKit::Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()));
    }
};

/// Identify the only monitor and report the toggling done: its override is
/// applied and waits for confirmation.
const char* identifyAndApply = R"(
wait 5
menu
click 2               # Identify This Monitor…
window confirm
window toggle-done
)";

} // namespace

TEST_F(SamsungScenario, IdentifyingAgainWithTheSplitOnScreenKeepsTheSplit) {
    const auto r = run(std::string(identifyAndApply) + R"(
keep
wait 4
window close
menu
click 4               # Identify Again…
window confirm
window toggle-done
wait 20
state
)");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const json state = r.last();
    EXPECT_EQ(state["panels"]["identification"], "finished");
    EXPECT_EQ(monitor(state, "samsung")["edid"], "override");
    EXPECT_EQ(monitor(state, "samsung")["edidHasSplit"], true);
    ASSERT_EQ(state["settings"].size(), 1u);
    EXPECT_EQ(state["settings"][0]["behavior"], "fixedMissingSplit");
    EXPECT_TRUE(state["settings"][0].contains("overrideEDID"));
    EXPECT_EQ(state["settings"][0]["factoryFullEDID"], samsungBase64())
        << "the monitor's own EDID, not our override";
}

TEST_F(SamsungScenario,
       QuittingDuringTheConfirmationTakesTheChangeBackEvenWhenSplitsAreKeptAfterQuitting) {
    const auto r = run(R"(
menu
click 7               # Keep Split Resolutions After Quitting
)" + std::string(identifyAndApply) +
                       R"(
state
quit
state
launch
wait 10
state
)");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    ASSERT_EQ(states.size(), 3u);
    EXPECT_EQ(monitor(states[0], "samsung")["edid"], "override")
        << "the change waits for confirmation";
    for (const json* state : {&states[1], &states[2]}) {
        EXPECT_EQ(monitor(*state, "samsung")["edid"], "factory-full");
        ASSERT_EQ((*state)["settings"].size(), 1u);
        EXPECT_FALSE((*state)["settings"][0].contains("overrideEDID"))
            << "never confirmed, never kept";
        EXPECT_EQ((*state)["settings"][0]["factoryFullEDID"], samsungBase64());
    }
}

TEST_F(SamsungScenario, UnpluggingDuringTheConfirmationClosesItQuietly) {
    const auto r = run(std::string(identifyAndApply) + R"(
unplug samsung
wait 20
state
plug samsung
wait 10
state
)");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    ASSERT_EQ(states.size(), 2u);
    EXPECT_EQ(states[0]["pendingConfirmation"], nullptr);
    EXPECT_EQ(states[0]["panels"]["confirmation"], false);
    EXPECT_EQ(states[0]["alerts"], json::array()) << "no \"macOS refused the change\"";
    EXPECT_EQ(states[0]["panels"]["identification"], "reverted");
    EXPECT_FALSE(states[0]["settings"][0].contains("overrideEDID"));
    EXPECT_EQ(monitor(states[1], "samsung")["edid"], "factory-full")
        << "nothing unconfirmed comes back";
}

TEST(BuiltInRigScenario, CancellingAnIdentificationThenTurningPBPOnWritesNothing) {
    const auto r = simulate({"--strict"}, R"(
wait 5
menu
click 5               # identify the superwide
window confirm
window close
pbp superwide-49 on
wait 30
state
)");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const json state = r.last();
    EXPECT_EQ(monitor(state, "superwide-49")["edid"], "factory-split");
    EXPECT_FALSE(monitor(state, "superwide-49").contains("overrideBy"));
    for (const auto& record : state["settings"])
        EXPECT_FALSE(record.contains("overrideEDID"));
}

TEST(BuiltInRigScenario, AFactoryResetLastsOnALatchingMonitorWhoseBothEDIDsAreKnown) {
    const auto r = simulate({"--strict"}, R"(
wait 5
menu
click 2               # identify the ultrawide, which latches
window confirm
pbp ultrawide-34 on
wait 20
keep
wait 4
window close
unplug ultrawide-34   # plugged in again with PBP on: its half EDID is learnt
wait 2
plug ultrawide-34
wait 10
state
menu
click 9               # Restore Factory Settings on All Displays
wait 30
state
)");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    ASSERT_EQ(states.size(), 2u);
    const json& before = states[0]["settings"][0];
    ASSERT_TRUE(before.contains("factorySplitEDID")) << states[0].dump();
    ASSERT_TRUE(before.contains("overrideEDID"));
    EXPECT_EQ(monitor(states[0], "ultrawide-34")["edid"], "override");
    const json& after = states[1];
    EXPECT_EQ(monitor(after, "ultrawide-34")["edid"], "factory-split") << after.dump();
    EXPECT_FALSE(after["settings"][0].contains("overrideEDID"));
}

TEST(BuiltInRigScenario,
     ASuperwideStartsAndStaysAtItsWholePanelAndItsFullEDIDIsNotTakenForItsSplitOne) {
    // The superwide's base block lists 2560×1440 first; DisplayID prefers 5120×1440.
    const auto r = simulate({"--strict"}, R"(
wait 5
state
menu
click 5
window confirm
pbp superwide-49 on
wait 4
pbp superwide-49 off
wait 20
window close
sleep
wait 5
wake
wait 20
state
pbp superwide-49 on   # the monitor is followed into its split and back
wait 10
pbp superwide-49 off
wait 10
state
)");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    ASSERT_EQ(states.size(), 3u);
    for (const json& state : states)
        EXPECT_EQ(monitor(state, "superwide-49")["mode"], "5120\u00D71440@60");
    const json& record = states[2]["settings"][0];
    EXPECT_EQ(record["behavior"], "switchesOnToggle");
    ASSERT_TRUE(record.contains("factoryFullEDID"));
    EXPECT_NE(record.value("factorySplitEDID", ""), record["factoryFullEDID"]);
}
