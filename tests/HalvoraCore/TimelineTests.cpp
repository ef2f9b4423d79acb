// Whole stories across the controller's parts, on the virtual clock: every
// platform call and every save, in order, with the time it happened.

#include "ControllerFixture.hpp"

#include <sstream>

using namespace ControllerTesting;

using Log = std::vector<std::string>;

class TimelineTest : public ControllerTest {
protected:
    Log log;

    void SetUp() override {
        system->onCall = [this](const TestDoubles::ScriptedDisplaySystem::Call& c) { note(c.description()); };
        store->onSave = [this](const std::vector<DisplaySettings>&) { note("save"); };
    }
    void note(const std::string& what) {
        std::ostringstream s;
        s << "T+" << clock->now() - T << " " << what;
        log.push_back(s.str());
    }
};

TEST_F(TimelineTest, LaunchWritesTheSavedOverrideRestoresTheModeAndIgnoresTheInterruptsItCauses) {
    DisplaySettings s = ultrawideSettings();
    s.overrideEDID = ultrawideSplit();
    s.lastMode = split60;
    s.factoryFullEDID = ultrawideFull();
    store->stored = {s};
    attachUltrawide(); // showing its factory EDID, at 3440×1440
    start();
    clock->advanceTo(T + 6);
    system->fireInterrupt(); // the monitor re-enumerating after the write
    clock->advanceTo(T + 11);
    system->fireInterrupt(); // 5 s after the mode was set: still in the cool-down
    clock->advanceTo(T + 30);
    EXPECT_EQ(log, (Log{"T+3 applyEDIDOverride dcp-1", "T+6 setMode dcp-1 1720×1440@60"}));
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_TRUE(errors.empty());
}

TEST_F(TimelineTest, IdentifyingALatchingMonitorAppliesTheSplitAndKeepingFinishesIt) {
    attachUltrawide();
    start();
    clock->advanceTo(T + 5);
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    int wizardChanges = 0;
    wizard->onChange = [&] { ++wizardChanges; };
    wizard->confirm({3440, 1440}); // T+5: native saved, factory EDID captured
    clock->advanceTo(T + 10);
    system->fireInterrupt(); // toggle 1
    clock->advanceTo(T + 12.5);
    system->fireInterrupt(); // toggle 2, 2.5 s later
    clock->advanceTo(T + 15.4);
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::togglePBP());
    clock->advanceTo(T + 15.5); // verdict 3 s after the last signal
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::confirming(PBPBehavior::latchedAtPlug));
    EXPECT_EQ(controller->pendingConfirmation(), (PendingConfirmation{DisplayID("dcp-1"), T + 30.5}));
    clock->advanceTo(T + 20);
    controller->keep();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::latchedAtPlug));
    EXPECT_EQ(wizardChanges, 2);
    // (The display keeps its 3440×1440 mode across the write, so the settle
    // timer at T+18.5 finds nothing to put back.)
    EXPECT_EQ(log, (Log{"T+5 save",                       // native
                        "T+5 save",                       // factory full EDID
                        "T+15.5 save",                    // behaviour
                        "T+15.5 applyEDIDOverride dcp-1", // the split
                        "T+20 save"}));                   // kept
    EXPECT_EQ(store->stored.back().overrideEDID, ultrawideSplit());
    EXPECT_EQ(store->stored.back().behavior, PBPBehavior::latchedAtPlug);
}

TEST_F(TimelineTest, ASwitchingMonitorWhoseEDIDFlipsToItsSplitIsSwitchedToTheSplitMode) {
    const Bytes& pbp = *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture;
    DisplaySettings s(identityOf(superwideFull()), "DP-1", {5120, 1440}, std::nullopt, std::nullopt,
                      PBPBehavior::switchesOnToggle);
    store->stored = {s};
    system->attach("dcp-1", superwideFull(), {{5120, 1440, 60}, {2560, 1440, 60}}, DisplayMode{5120, 1440, 60});
    start();
    clock->advanceTo(T + 20); // first pass at T+3 remembers the EDID seen
    log.clear();
    // The user turns PBP on at the monitor: it re-enumerates with its split
    // EDID, but comes up in a mode of its own choosing.
    system->setFactoryEDID("dcp-1", pbp);
    system->setModes("dcp-1", {{2560, 1440, 60}, {1920, 1080, 60}});
    system->setCurrentMode("dcp-1", DisplayMode{1920, 1080, 60});
    system->fireConfigurationChange(true);
    clock->advanceTo(T + 23);
    EXPECT_EQ(log, (Log{"T+23 save", // the factory split EDID is captured
                        "T+23 setMode dcp-1 2560×1440@60", "T+23 save"}));
    EXPECT_EQ(store->stored.back().lastMode, (DisplayMode{2560, 1440, 60}));
    EXPECT_EQ(store->stored.back().factorySplitEDID, pbp);
}

TEST_F(TimelineTest, AConflictingToolHoldsBackRestoringAndItsEDIDIsClearedOnceWhenItGoes) {
    attachUltrawideWithSplitKept();
    start();
    clock->advanceTo(T + 20);
    // The other tool starts and writes its own EDID.
    probe->present = {ConflictingTool::edidOverrideService};
    system->setOverride("dcp-1", foreignEDIDFor(ultrawideFull()));
    system->fireConfigurationChange(true);
    clock->advanceTo(T + 30);
    EXPECT_TRUE(log.empty()) << "nothing is restored while it is active";
    EXPECT_TRUE(errors.empty());
    // It goes away.
    probe->present.clear();
    system->fireConfigurationChange(false);
    clock->advanceTo(T + 40);
    EXPECT_EQ(log, (Log{"T+33 restoreFactoryEDID dcp-1", // the foreign EDID, once
                        "T+36 save",                     // the clean port's factory EDID is captured
                        "T+36 applyEDIDOverride dcp-1"}));
    EXPECT_EQ(system->overrideOn("dcp-1"), ultrawideSplit());
}

TEST_F(TimelineTest, SleepWakeAndQuit) {
    attachUltrawideWithSplitKept();
    system->attach("dcp-2", superwideFull());
    const Bytes& otherTool = *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture;
    system->setOverride("dcp-2", otherTool);
    start();
    clock->advanceTo(T + 20);
    system->fireInterrupt();
    clock->advanceTo(T + 20.5);
    system->fireSleep(true); // cancels the prompt check due at T+21
    clock->advanceTo(T + 60);
    EXPECT_FALSE(controller->switchPrompt());
    system->fireSleep(false);
    clock->advanceTo(T + 74);
    system->fireInterrupt(); // 14 s after the wake
    clock->advanceTo(T + 76);
    EXPECT_FALSE(controller->switchPrompt());
    controller->restoreForQuit();
    EXPECT_EQ(log, (Log{"T+76 restoreFactoryEDID dcp-1"})) << "the other tool's EDID on dcp-2 stays";
    EXPECT_EQ(system->overrideOn("dcp-2"), otherTool);
}
