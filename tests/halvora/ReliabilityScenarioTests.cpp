// The application on a recorded machine whose ports do not hand back what is
// written to them, after a safe start, and after a crash in the middle of
// saving its settings.

#include "SimulatorRun.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/SettingsCoding.hpp>
#include <TemporaryFolder.hpp>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace SimulatorTesting;
using ::testing::HasSubstr;

namespace {

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

/// The built-in ultrawide, kept with its split override, on a port that
/// alters what is written to it (`alteration`, or not at all when empty).
class KeptUltrawide : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder folder;
    std::string rig = (folder / "rig.json").string();
    std::string settings = (folder / "displays.json").string();

    void prepare(const std::string& alteration) {
        const auto* sample = EDIDKit::sampleMonitor("ultrawide-34");
        json monitor = {{"name", "u34"},
                        {"full", EDIDKit::hexDump(sample->full)},
                        {"split", EDIDKit::hexDump(*sample->pictureByPicture)},
                        {"behavior", "fixedMissingSplit"}};
        if (!alteration.empty()) monitor["alterOnWrite"] = alteration;
        TestSupport::writeFile(rig, json{{"monitors", {monitor}}}.dump());

        const EDIDKit::EDID full(sample->full);
        HalvoraCore::DisplaySettings kept(HalvoraCore::DisplayIdentity::of(full), "Port 1", {3440, 1440});
        kept.behavior = HalvoraCore::PBPBehavior::fixedMissingSplit;
        kept.factoryFullEDID = sample->full;
        kept.overrideEDID = full.addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}).bytes();
        TestSupport::writeFile(settings, HalvoraCore::encodeSettingsList({kept}).dump(2));
    }
    SimulatorTesting::Run run(const std::string& script, std::vector<std::string> extra = {}) {
        std::vector<std::string> args = {"--rig", rig, "--settings", settings, "--strict"};
        args.insert(args.end(), extra.begin(), extra.end());
        return simulate(args, script);
    }
};

const char* const overrideWritten = "Display u34: Halvora Pro's override EDID";
const char* const toldOnce = "keeps reporting a different EDID from the one Halvora Pro writes";

} // namespace

TEST_F(KeptUltrawide, APortThatDropsTheExtensionsIsWrittenThreeTimesThenLeftAloneAndTheUserToldOnce) {
    prepare("extensions");
    const auto r = run("wait 120\nstate\nunplug u34\nplug u34\nwait 60\nstate\nquit\nstate\n");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    ASSERT_EQ(states.size(), 3u);
    EXPECT_EQ(monitor(states[0], "u34")["rewritesStopped"], true);
    ASSERT_EQ(states[0]["alerts"].size(), 1u);
    EXPECT_THAT(states[0]["alerts"][0]["message"].get<std::string>(), HasSubstr(toldOnce));
    EXPECT_EQ(monitor(states[0], "u34")["overrideWrites"], 3);
    EXPECT_EQ(occurrences(r.out, "Display u34: Halvora Pro's override EDID again"), 4u) << r.out;
    // A replug gives the monitor three more writes, then it is stopped again.
    EXPECT_EQ(monitor(states[1], "u34")["overrideWrites"], 6);
    EXPECT_EQ(occurrences(r.out, "Alert: Halvora Pro couldn't do that"), 2u);
    // Quitting gives the monitor its own EDID back, altered override or not.
    EXPECT_EQ(monitor(states[2], "u34")["edid"], "factory-full");
}

TEST_F(KeptUltrawide, APortThatHandsTheOverrideBackAsWrittenIsRewrittenAfterEveryReplug) {
    prepare("");
    std::string script;
    for (int i = 0; i < 6; ++i) script += "unplug u34\nwait 1\nplug u34\nwait 8\n";
    const auto r = run(script + "state\n");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_EQ(occurrences(r.out, overrideWritten), 6u) << r.out;
    EXPECT_EQ(occurrences(r.out, "Alert:"), 0u);
    EXPECT_FALSE(monitor(r.last(), "u34").contains("rewritesStopped"));
    EXPECT_EQ(monitor(r.last(), "u34")["edidHasSplit"], true);
}

TEST_F(KeptUltrawide, AnOverrideHandedBackWithAnotherSerialNumberIsOursAndWrittenOnce) {
    prepare("serial");
    const auto r = run("wait 120\nstate\nquit\nstate\n");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_EQ(occurrences(r.out, overrideWritten), 1u) << r.out;
    EXPECT_EQ(occurrences(r.out, "Alert:"), 0u);
    const auto states = r.states();
    EXPECT_EQ(monitor(states[0], "u34")["overrideWrites"], 1);
    EXPECT_EQ(monitor(states[0], "u34")["edidHasSplit"], true);
    EXPECT_EQ(states[0]["settings"].size(), 1u) << "the altered EDID is no new monitor";
    EXPECT_EQ(monitor(states[1], "u34")["edid"], "factory-full");
}

TEST_F(KeptUltrawide, ASafeStartRestoresNothingUntilTheUserAsksAndSaysSoInTheMenu) {
    prepare("");
    const auto r = run("wait 10\nstate\nmenu\nclick 2\nwait 5\nstate\n", {"--safe"});
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    EXPECT_THAT(r.out, HasSubstr("Halvora Pro starts with the Option key held"));
    EXPECT_EQ(states[0]["safeStart"], true);
    EXPECT_EQ(monitor(states[0], "u34")["edid"], "factory-full");
    EXPECT_THAT(r.out, HasSubstr("1. Started safely: saved settings were not restored  (title)"));
    EXPECT_THAT(r.out, HasSubstr("You choose \"Restore Saved Settings Now\""));
    EXPECT_FALSE(states[1].contains("safeStart"));
    EXPECT_EQ(monitor(states[1], "u34")["edid"], "override");
}

TEST_F(KeptUltrawide, QuittingAfterASafeStartLeavesACrashedRunsOverrideWhereItIs) {
    prepare("");
    const auto r = run("wait 10\ncrash\nlaunch --safe\nwait 10\nquit\nstate\nlaunch\nwait 10\nstate\n");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    EXPECT_EQ(monitor(states[0], "u34")["edid"], "override") << "nothing was given back";
    EXPECT_EQ(monitor(states[1], "u34")["edid"], "override");
    EXPECT_FALSE(states[1].contains("safeStart")) << "a normal launch is not safe";
}

TEST_F(KeptUltrawide, AKillInTheMiddleOfASaveLosesNothingAndTheNextLaunchClearsTheLitter) {
    prepare("");
    const std::string before = TestSupport::readFile(settings);
    const auto r = run("wait 10\ncrash mid-save\nstate\nlaunch\nwait 10\nstate\n");
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    const auto states = r.states();
    EXPECT_EQ(states[0]["settings"], json::parse(before));
    EXPECT_THAT(r.out, HasSubstr("Halvora Pro is killed while saving its settings"));
    EXPECT_THAT(r.out, HasSubstr("log: Halvora Pro: removed 1 unfinished settings save(s)"));
    EXPECT_EQ(states[1]["settings"], json::parse(before));
    EXPECT_EQ(monitor(states[1], "u34")["edid"], "override");
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        left.push_back(entry.path().filename());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::string>{".halvora-pro.lock", "displays.json", "rig.json"}))
        << "the rig, the settings file and the folder's lock, nothing else";
}

TEST(Simulate, CrashAndLaunchRefuseWordsTheyDoNotTake) {
    const auto r = simulate({}, "crash now\nlaunch --fast\nquit\ncrash\n");
    EXPECT_THAT(r.out, HasSubstr("! usage: crash [mid-save]"));
    EXPECT_THAT(r.out, HasSubstr("! usage: launch [--safe]"));
    EXPECT_THAT(r.out, HasSubstr("! Halvora Pro is not running (use 'launch')"));
}
