#include "Rig.hpp"
#include "Simulator.hpp"
#include "SimulatorRun.hpp"

#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <TemporaryFolder.hpp>
#include <UnprivilegedUser.hpp>
#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Halvora;
using namespace SimulatorTesting;
using nlohmann::json;
using ::testing::HasSubstr;

namespace {

TEST(Simulate, HelpDescribesTheRigAndTheOptions) {
    const auto run = simulate({"--help"}, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("--rig FILE"));
    EXPECT_THAT(run.out, HasSubstr("latchedAtPlug"));
    const auto commands = simulate({}, "help\n");
    EXPECT_THAT(commands.out, HasSubstr("window choose N|none"));
}

TEST(Simulate, OnATerminalItPromptsForEachCommandAndDoesNotEchoThem) {
    const auto run = simulate({}, "state\nwait 1\n", true);
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("Type 'help' for the commands"));
    std::size_t prompts = 0;
    for (auto at = run.out.find("halvora> "); at != std::string::npos;
         at = run.out.find("halvora> ", at + 1))
        ++prompts;
    EXPECT_EQ(prompts, 3u); // one before each command, and one that meets the end of input
    EXPECT_THAT(run.out, ::testing::Not(HasSubstr("> state")));
    EXPECT_THAT(run.out, HasSubstr("halvora> {\"alerts\""));
}

TEST(Simulate, UnknownOptionsAreUsageErrors) {
    EXPECT_EQ(simulate({"--nope"}, "").status, 2);
    EXPECT_EQ(simulate({"extra"}, "").status, 2);
    EXPECT_EQ(simulate({"--rig"}, "").status, 2);
}

TEST(Simulate, AScriptThatCannotBeReadIsNamed) {
    const auto run = simulate({"--script", "/nonexistent/tour.halvora"}, "");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot read /nonexistent/tour.halvora"));
}

TEST(Simulate, TheBuiltInRigHasTwoAttachedMonitorsAndAnEmptySettingsFile) {
    const auto state = simulate({}, "state\n").last();
    ASSERT_EQ(state["monitors"].size(), 2u);
    EXPECT_EQ(
        monitor(state, "ultrawide-34"),
        json::parse(R"({"name":"ultrawide-34","attached":true,"pbp":false,"edid":"factory-full",
                              "edidHasSplit":false,"mode":"3440×1440@60"})"));
    // The superwide's whole panel is the preferred timing of its DisplayID section.
    EXPECT_EQ(monitor(state, "superwide-49")["mode"], "5120×1440@60");
    EXPECT_EQ(state["time"], 0.0);
    EXPECT_TRUE(state["pendingConfirmation"].is_null());
    EXPECT_TRUE(state["switchPrompt"].is_null());
    EXPECT_EQ(state["conflicts"], json::array());
    EXPECT_EQ(state["panels"],
              json::parse(R"({"confirmation":false,"switchPrompt":false,"identification":null})"));
    EXPECT_EQ(state["alerts"], json::array());
    EXPECT_EQ(state["settings"], json::array());
}

const char* identifyAndKeep = R"(
menu
click 2            # Identify This Monitor… (ultrawide-34)
window confirm     # 3440×1440, the suggested candidate
pbp ultrawide-34 on
wait 20            # the latching verdict comes 15 s after the interrupt
state
keep
wait 1
window close
state
)";

TEST(Simulate, IdentificationWithThePBPToggleEndsInAKeptSplit) {
    const auto run = simulate({"--strict"}, identifyAndKeep);
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto states = run.states();
    ASSERT_EQ(states.size(), 2u);
    EXPECT_EQ(states[0]["panels"]["identification"], "confirming");
    EXPECT_EQ(states[0]["panels"]["confirmation"], true);
    EXPECT_EQ(states[0]["pendingConfirmation"]["display"], "ultrawide-34");
    EXPECT_EQ(monitor(states[0], "ultrawide-34")["edid"], "override");
    EXPECT_EQ(monitor(states[0], "ultrawide-34")["edidHasSplit"], true);
    const auto& kept = states[1];
    EXPECT_TRUE(kept["pendingConfirmation"].is_null());
    EXPECT_EQ(kept["panels"]["confirmation"], false);
    EXPECT_TRUE(kept["panels"]["identification"].is_null());
    ASSERT_EQ(kept["settings"].size(), 1u);
    EXPECT_EQ(kept["settings"][0]["behavior"], "latchedAtPlug");
    EXPECT_TRUE(kept["settings"][0].contains("overrideEDID"));
    EXPECT_THAT(run.out, HasSubstr("Confirmation panel appears: Keep this display setting?"));
    EXPECT_THAT(run.out, HasSubstr("Now turn picture-by-picture on or off"));
}

TEST(Simulate, AReplugRestoresTheOverrideAndTheMode) {
    const auto run = simulate({"--strict"}, std::string(identifyAndKeep) + R"(
unplug ultrawide-34
wait 1
plug ultrawide-34
wait 10
state
)");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto back = monitor(run.last(), "ultrawide-34");
    EXPECT_EQ(back["edid"], "override");
    EXPECT_EQ(back["mode"], "3440×1440@60");
}

TEST(Simulate, AnUnconfirmedChangeRevertsAtItsDeadline) {
    const auto run = simulate({"--strict"}, std::string(identifyAndKeep) + R"(
menu
click 9            # Restore Factory Settings on All Displays
menu
click 2            # Add Split Resolution 1720×1440
state
wait 15
state
)");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto states = run.states();
    ASSERT_EQ(states.size(), 4u);
    EXPECT_EQ(states[2]["pendingConfirmation"]["deadline"], states[2]["time"].get<double>() + 15);
    EXPECT_EQ(monitor(states[2], "ultrawide-34")["edid"], "override");
    EXPECT_TRUE(states[3]["pendingConfirmation"].is_null());
    EXPECT_EQ(monitor(states[3], "ultrawide-34")["edid"], "factory-full");
    EXPECT_FALSE(states[3]["settings"][0].contains("overrideEDID"));
    EXPECT_THAT(run.out, HasSubstr("Confirmation panel fades out"));
}

TEST(Simulate, QuitGivesTheFactoryEDIDsBackAndLaunchRestoresThem) {
    const auto run = simulate({"--strict"}, std::string(identifyAndKeep) + R"(
quit
state
launch
wait 10
state
)");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto states = run.states();
    ASSERT_EQ(states.size(), 4u);
    EXPECT_EQ(monitor(states[2], "ultrawide-34")["edid"], "factory-full");
    EXPECT_EQ(states[2]["settings"].size(), 1u);
    EXPECT_EQ(monitor(states[3], "ultrawide-34")["edid"], "override");
}

TEST(Simulate, CommandsThatCannotBeCarriedOutAreReportedAndTheScriptGoesOn) {
    const auto run = simulate(
        {}, "plug nobody\nkeep\nwindow confirm\nalert 1\nclick 1\nfrobnicate\nwait soon\nstate\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("! no monitor is named 'nobody'"));
    EXPECT_THAT(run.out, HasSubstr("! no confirmation panel is shown"));
    EXPECT_THAT(run.out, HasSubstr("! no identification window is open"));
    EXPECT_THAT(run.out, HasSubstr("! no alert is open"));
    EXPECT_THAT(run.out, HasSubstr("! open the menu first"));
    EXPECT_THAT(run.out, HasSubstr("! unknown command 'frobnicate'"));
    EXPECT_THAT(run.out, HasSubstr("! usage: wait SECONDS"));
    EXPECT_EQ(run.states().size(), 1u);
}

TEST(Simulate, MachineEventsThatChangeNothingSaySoAndAreNoErrors) {
    const auto run =
        simulate({"--strict"}, "plug ultrawide-34\npbp superwide-49 off\nunplug ultrawide-34\n"
                               "unplug ultrawide-34\ninterrupt ultrawide-34\nstate\n");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("ultrawide-34 is already plugged in"));
    EXPECT_THAT(run.out, HasSubstr("picture-by-picture is already off"));
    EXPECT_THAT(run.out, HasSubstr("ultrawide-34 is not plugged in; nothing happens"));
    EXPECT_EQ(monitor(run.last(), "ultrawide-34")["attached"], false);
    EXPECT_TRUE(monitor(run.last(), "ultrawide-34")["mode"].is_null());
}

TEST(Simulate, StrictStopsAtTheFirstCommandThatCannotBeCarriedOut) {
    const auto run = simulate({"--strict"}, "state\nkeep\nstate\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("line 2"));
    EXPECT_EQ(run.states().size(), 1u);
}

TEST(Simulate, ADisabledMenuItemCannotBeChosen) {
    const auto run = simulate({"--strict"}, R"(
menu
click 2
window confirm
pbp ultrawide-34 on
wait 20
menu
click 9
)");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("is disabled"));
}

TEST(Simulate, ConflictingToolsAreAlertedOnceAndTheServiceCanBeTakenOver) {
    const auto run = simulate({"--strict"}, R"(
tool edid-override on
tool betterdisplay on
menu
state
alert 1
alert 1
menu
state
)");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto states = run.states();
    EXPECT_EQ(states[0]["conflicts"], json::parse(R"(["edidOverrideService","betterDisplay"])"));
    ASSERT_EQ(states[0]["alerts"].size(), 2u);
    EXPECT_EQ(states[0]["alerts"][0]["title"], "Another tool is changing your displays");
    EXPECT_THAT(states[0]["alerts"][0]["message"].get<std::string>(),
                HasSubstr("background service"));
    EXPECT_EQ(states[1]["conflicts"], json::parse(R"(["betterDisplay"])"));
    EXPECT_EQ(states[1]["alerts"], json::array());
}

TEST(Simulate, AnUpdateFoundOutOfFocusShowsInTheMenu) {
    const auto run = simulate({"--strict"}, "update-found 1.2\nmenu\nclick 11\nmenu\n");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Update to Version 1.2…"));
    EXPECT_THAT(run.out, HasSubstr("The update window shows Halvora Pro 1.2"));
}

// --- rigs ----------------------------------------------------------------

TEST(SimulateRig, MonitorsComeFromFilesBesideTheRigOrFromHex) {
    TestSupport::TemporaryFolder folder;
    const auto& sample = *EDIDKit::sampleMonitor("ultrawide-34");
    TestSupport::writeFile(folder / "u34.bin", std::string(sample.full.begin(), sample.full.end()));
    const json rig = {{"monitors",
                       {{{"name", "left"}, {"full", "u34.bin"}, {"behavior", "fixedMissingSplit"}},
                        {{"name", "right"},
                         {"full", EDIDKit::hexDump(sample.full)}, // JSON keeps the line breaks
                         {"split", EDIDKit::hexDump(*sample.pictureByPicture)},
                         {"behavior", "switchesOnToggle"},
                         {"attached", false}}}},
                      {"tools", {{"betterDisplay", true}}}};
    TestSupport::writeFile(folder / "rig.json", rig.dump());
    const auto run = simulate({"--rig", (folder / "rig.json").string(), "--strict"},
                              "plug right\npbp right on\nstate\n");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto state = run.last();
    EXPECT_EQ(monitor(state, "left")["edid"], "factory-full");
    EXPECT_EQ(monitor(state, "right")["edid"], "factory-split");
    EXPECT_EQ(monitor(state, "right")["mode"], "1720×1440@60");
    EXPECT_EQ(state["conflicts"], json::parse(R"(["betterDisplay"])"));
}

TEST(SimulateRig, RealMonitorsIdentifyKeepComeBackAndGoBackToFactoryAtQuit) {
    // Two monitors of the real-EDID corpus: a Dell U4919DW (5120×1440) that
    // latches, and a Samsung S34J55x (3440×1440) that never offers the split.
    const std::string corpus = HALVORA_EDID_CORPUS;
    TestSupport::TemporaryFolder folder;
    const json rig = {
        {"monitors",
         {{{"name", "dell"}, {"full", corpus + "/114FF10CAB85.bin"}, {"behavior", "latchedAtPlug"}},
          {{"name", "samsung"},
           {"full", corpus + "/0795FF497EBB.bin"},
           {"behavior", "fixedMissingSplit"}}}}};
    TestSupport::writeFile(folder / "rig.json", rig.dump());
    const auto run = simulate({"--rig", (folder / "rig.json").string(), "--strict"}, R"(
menu
click 2               # identify the Dell
window confirm
pbp dell on
wait 20
keep
wait 4
window close
menu
click 7               # identify the Samsung
window confirm
pbp samsung on        # nothing visible happens on this monitor
window toggle-done
wait 4
keep
wait 4
window close
state
unplug dell
unplug samsung
wait 2
plug dell
plug samsung
wait 10
state
quit
state
)");
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto states = run.states();
    ASSERT_EQ(states.size(), 3u);
    for (const auto& state : {states[0], states[1]}) {
        EXPECT_EQ(monitor(state, "dell")["edid"], "override");
        EXPECT_EQ(monitor(state, "dell")["edidHasSplit"], true);
        EXPECT_EQ(monitor(state, "dell")["mode"], "5120×1440@60");
        EXPECT_EQ(monitor(state, "samsung")["edid"], "override");
        EXPECT_EQ(monitor(state, "samsung")["edidHasSplit"], true);
        EXPECT_EQ(monitor(state, "samsung")["mode"], "3440×1440@60");
    }
    ASSERT_EQ(states[1]["settings"].size(), 2u);
    EXPECT_EQ(monitor(states[2], "dell")["edid"], "factory-full");
    EXPECT_EQ(monitor(states[2], "samsung")["edid"], "factory-full");
}

TEST(SimulateRig, BadRigsAreRefusedWithTheReason) {
    TestSupport::TemporaryFolder folder;
    const auto& full = EDIDKit::sampleMonitor("ultrawide-34")->full;
    std::string hex = EDIDKit::hexDump(full);
    std::replace(hex.begin(), hex.end(), '\n', ' ');
    const std::pair<std::string, std::string> cases[] = {
        {"not json", "not JSON"},
        {R"({"displays":[]})", "\"monitors\" list"},
        {R"({"monitors":[{"full":"x"}]})", "needs a \"name\""},
        {R"({"monitors":[{"name":"a","full":"missing.bin","behavior":"latchedAtPlug"}]})",
         "cannot read"},
        {R"({"monitors":[{"name":"a","full":")" + hex + R"(","behavior":"sometimes"}]})",
         "\"behavior\" must be"},
        {R"({"monitors":[{"name":"a","full":")" + hex +
             R"(","behavior":"latchedAtPlug"},{"name":"a","full":")" + hex +
             R"(","behavior":"latchedAtPlug"}]})",
         "listed twice"},
        {R"({"monitors":[{"name":"a","full":")" + std::string(256, 'f') +
             R"(","behavior":"latchedAtPlug"}]})",
         "not a usable EDID"},
        {R"({"monitors":[{"name":"a","full":")" + hex +
             R"(","behavior":"latchedAtPlug","pbp":"yes"}]})",
         "true or false"},
        {R"({"monitors":[{"name":"a","full":")" + hex +
             R"(","behavior":"latchedAtPlug","alterOnWrite":"week"}]})",
         "\"alterOnWrite\" must be serial, checksum or extensions"},
    };
    for (const auto& [content, message] : cases) {
        TestSupport::writeFile(folder / "rig.json", content);
        const auto run = simulate({"--rig", (folder / "rig.json").string()}, "");
        EXPECT_EQ(run.status, 1) << content;
        EXPECT_THAT(run.err, HasSubstr(message)) << content;
        EXPECT_THAT(run.err, HasSubstr("rig.json")) << content;
    }
}

TEST(SimulateSettings, AGivenSettingsFileIsKeptAndRestoredOnTheNextRun) {
    TestSupport::TemporaryFolder folder;
    const auto settings = (folder / "displays.json").string();
    ASSERT_EQ(
        simulate({"--settings", settings, "--strict"}, std::string(identifyAndKeep) + "quit\n")
            .status,
        0);
    const auto saved = json::parse(TestSupport::readFile(settings));
    ASSERT_EQ(saved.size(), 1u);
    const auto next = simulate({"--settings", settings, "--strict"}, "wait 10\nstate\n");
    EXPECT_EQ(monitor(next.last(), "ultrawide-34")["edid"], "override");
    EXPECT_EQ(next.last()["settings"], saved);
}

TEST(SimulateSettings, ABareSettingsFileNameIsSavedInTheCurrentFolder) {
    TestSupport::TemporaryFolder folder;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const auto run = simulate({"--settings", "displays.json", "--strict"},
                              std::string(identifyAndKeep) + "quit\n");
    std::filesystem::current_path(before);
    EXPECT_EQ(run.status, 0) << run.out << run.err;
    EXPECT_THAT(run.out, ::testing::Not(HasSubstr("saving settings failed")));
    EXPECT_EQ(json::parse(TestSupport::readFile(folder / "displays.json")).size(), 1u);
}

TEST(SimulateSettings, ASettingsPathThatIsAFolderRunsWithAnAlertAndFailsAStrictRun) {
    TestSupport::TemporaryFolder folder;
    std::filesystem::create_directory(folder / "displays.json");
    const auto settings = (folder / "displays.json").string();
    const auto run = simulate({"--settings", settings}, std::string(identifyAndKeep) + "menu\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("Alert: Halvora Pro can't use its settings file"));
    EXPECT_THAT(run.out, HasSubstr("! the settings were not restored and are not saved: " +
                                   settings + ": it is a folder"));
    EXPECT_THAT(run.out, HasSubstr("Settings Weren't Restored; Saving Is Off"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "displays.json"));
    const auto strict = simulate({"--settings", settings, "--strict"}, "state\n");
    EXPECT_EQ(strict.status, 1);
    EXPECT_THAT(strict.err, HasSubstr(settings + ": it is a folder"));
}

TEST(SimulateSettings, ASecondCopyOnTheSameSettingsFolderSaysSoAndDoesNotRun) {
    TestSupport::TemporaryFolder folder;
    std::ostringstream firstOut;
    const Simulator first(Rig::builtIn(), folder / "displays.json", firstOut);
    const auto settings = (folder / "displays.json").string();
    const auto second = simulate({"--settings", settings}, "menu\n");
    EXPECT_THAT(second.out, HasSubstr("Alert: Halvora Pro is already running"));
    EXPECT_THAT(second.out, HasSubstr("! " + folder.path().string() +
                                      ": another copy of Halvora Pro is using this folder"));
    EXPECT_THAT(second.out, HasSubstr("! Halvora Pro is not running"));
    EXPECT_TRUE(first.isRunning());
    const auto strict = simulate({"--settings", settings, "--strict"}, "menu\n");
    EXPECT_EQ(strict.status, 1);
    EXPECT_THAT(strict.err, HasSubstr("another copy of Halvora Pro is using this folder"));
}

TEST(SimulateSettings, DevNullAsSettingsIsLeftAlone) {
    const auto run = simulate({"--settings", "/dev/null"},
                              std::string(identifyAndKeep) + "crash mid-save\nlaunch\nstate\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_FALSE(std::filesystem::exists("/dev/.null.tmp-killed-1"));
    EXPECT_TRUE(run.last()["settings"].is_null());
}

TEST(SimulateSettings, AFailedSaveIsPrintedOnceAsAnEventAndFailsAStrictRun) {
    TestSupport::TemporaryFolder folder;
    TestSupport::shareWithUnprivilegedUser(folder.path());
    // A settings folder that can be held (its lock file is there) but not written in.
    const auto settingsFolder = folder / "settings";
    std::filesystem::create_directories(settingsFolder);
    TestSupport::writeFile(settingsFolder / ".halvora-pro.lock", "");
    TestSupport::shareWithUnprivilegedUser(settingsFolder / ".halvora-pro.lock");
    TestSupport::shareWithUnprivilegedUser(settingsFolder);
    namespace fs = std::filesystem;
    fs::permissions(settingsFolder, fs::perms::owner_read | fs::perms::owner_exec |
                                        fs::perms::others_read | fs::perms::others_exec);
    const auto settings = (settingsFolder / "displays.json").string();
    const auto failure = TestSupport::runAsUnprivilegedUser([&] {
        std::string found;
        const auto run = simulate({"--settings", settings},
                                  std::string(identifyAndKeep) + "pbp ultrawide-34 off\nwait 30\n");
        const auto count = [&](const std::string& what) {
            std::size_t n = 0;
            for (auto at = run.out.find(what); at != std::string::npos;
                 at = run.out.find(what, at + 1))
                ++n;
            return n;
        };
        if (count("Alert: Halvora Pro couldn't save its settings") != 1) found += "not one alert; ";
        if (count("! saving the settings failed: " + settings + ": Permission denied") != 1)
            found += "not one event; ";
        if (run.status != 0) found += "a run that is not strict failed; ";
        const auto strict = simulate({"--settings", settings, "--strict"}, identifyAndKeep);
        if (strict.status != 1) found += "the strict run did not fail; ";
        if (strict.err.find("halvora: line ") == std::string::npos)
            found += "the strict run says " + strict.err;
        if (!found.empty()) found += "\n" + run.out;
        return found;
    });
    fs::permissions(settingsFolder, fs::perms::owner_all);
    if (!failure) GTEST_SKIP() << "this machine cannot run a check as an unprivileged user";
    EXPECT_EQ(*failure, "");
    EXPECT_FALSE(fs::exists(settings));
}

// --- what the simulator reads: never without end --------------------------------

TEST(SimulateInputs, AFolderGivenAsAScriptOrARigSaysItIsAFolder) {
    TestSupport::TemporaryFolder folder;
    const auto script = simulate({"--script", folder.path().string()}, "");
    EXPECT_EQ(script.status, 1);
    EXPECT_THAT(script.err, HasSubstr(folder.path().string() + ": it is a folder"));
    const auto rig = simulate({"--rig", folder.path().string()}, "");
    EXPECT_EQ(rig.status, 1);
    EXPECT_THAT(rig.err, HasSubstr(folder.path().string() + ": it is a folder"));
}

TEST(SimulateInputs, ADeviceGivenAsAScriptARigOrARigsEDIDIsRefusedWithoutReadingIt) {
    const auto script = simulate({"--script", "/dev/zero"}, "");
    EXPECT_EQ(script.status, 1);
    EXPECT_THAT(script.err, HasSubstr("/dev/zero: it is not a regular file"));
    const auto rig = simulate({"--rig", "/dev/zero"}, "");
    EXPECT_EQ(rig.status, 1);
    EXPECT_THAT(rig.err, HasSubstr("/dev/zero: it is not a regular file"));
    TestSupport::TemporaryFolder folder;
    TestSupport::writeFile(
        folder / "rig.json",
        R"({"monitors":[{"name":"a","full":"/dev/zero","behavior":"latchedAtPlug"}]})");
    const auto edid = simulate({"--rig", (folder / "rig.json").string()}, "");
    EXPECT_EQ(edid.status, 1);
    EXPECT_THAT(edid.err, HasSubstr("/dev/zero: it is not a regular file"));
}

TEST(SimulateInputs, ScriptsAndRigsLargerThanTheirLimitsAreRefusedUnread) {
    TestSupport::TemporaryFolder folder;
    TestSupport::writeFile(folder / "long.halvora", "state\n");
    std::filesystem::resize_file(folder / "long.halvora", (std::size_t{16} << 20) + 1);
    const auto script = simulate({"--script", (folder / "long.halvora").string()}, "");
    EXPECT_EQ(script.status, 1);
    EXPECT_THAT(script.err, HasSubstr("long.halvora: it is larger than 16 MiB"));
    TestSupport::writeFile(folder / "rig.json", "{}");
    std::filesystem::resize_file(folder / "rig.json", Rig::maxFileSize + 1);
    const auto rig = simulate({"--rig", (folder / "rig.json").string()}, "");
    EXPECT_EQ(rig.status, 1);
    EXPECT_THAT(rig.err, HasSubstr("rig.json: it is larger than 4 MiB"));
}

TEST(SimulateInputs, AScriptLineWithoutEndStopsAtTheLineLimit) {
    // What `halvora simulate < /dev/zero` reads: bytes and no line end.
    const auto run = simulate({}, std::string(100000, '\0'));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("standard input: line 1 is longer than 4096 characters"));
    EXPECT_EQ(simulate({}, std::string(4096, ' ') + "\nstate\n").status, 0)
        << "a line of 4096 characters is fine";
}

TEST(SimulateInputs, APipedScriptFileIsRead) {
    TestSupport::TemporaryFolder folder;
    const auto pipe = folder / "script";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
        TestSupport::writeFile(pipe, "state\n");
        ::_exit(0);
    }
    const auto run = simulate({"--script", pipe.string(), "--strict"}, "");
    ::waitpid(writer, nullptr, 0);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.states().size(), 1u);
}

TEST(SimulateInputs, ARigHasAtMostItsLimitOfMonitors) {
    const auto& full = EDIDKit::sampleMonitor("ultrawide-34")->full;
    std::string hex = EDIDKit::hexDump(full);
    std::replace(hex.begin(), hex.end(), '\n', ' ');
    json rig = {{"monitors", json::array()}};
    for (std::size_t i = 0; i <= Rig::maxMonitors; ++i)
        rig["monitors"].push_back(
            {{"name", "m" + std::to_string(i)}, {"full", hex}, {"behavior", "latchedAtPlug"}});
    EXPECT_THROW(Rig::fromJSON(rig, "."), RigError);
    rig["monitors"].erase(rig["monitors"].size() - 1);
    EXPECT_EQ(Rig::fromJSON(rig, ".").monitors.size(), Rig::maxMonitors);
}

} // namespace
