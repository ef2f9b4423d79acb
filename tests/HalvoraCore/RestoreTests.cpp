// The restore pass, quitting, and the factory reset.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

using Calls = std::vector<std::string>;

namespace {

DisplaySettings kept(DisplaySettings s, std::optional<DisplayMode> mode = qhd60) {
    s.overrideEDID = ultrawideSplit();
    s.lastMode = mode;
    return s;
}

} // namespace

TEST_F(ControllerTest, ADisplayShowingItsFactoryEDIDGetsTheSavedOverrideAndItsModeThreeSecondsLater) {
    store->stored = {kept(ultrawideSettings())};
    attachUltrawide();
    start();
    clock->advanceTo(T + 3);
    ASSERT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"}));
    EXPECT_EQ(system->calls[0].edid, ultrawideSplit());
    EXPECT_FALSE(interruptIsChecked()) << "the write is the controller's own change";
    clock->advanceTo(T + 6);
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1", "setMode dcp-1 2560×1440@60"}));
}

TEST_F(ControllerTest, ARestoredOverrideKeepsTheModeQuietForTenSecondsAfterItsWrite) {
    attachUltrawide();
    const auto run = [&](double at) {
        store->stored = {kept(ultrawideSettings())};
        system->setOverride("dcp-1", std::nullopt);
        system->setCurrentMode("dcp-1", full60);
        system->calls.clear();
        const double launch = clock->now();
        start();
        clock->advanceTo(launch + 3);
        EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"})) << "written by the launch pass";
        return passAfterUserPicks(full60, launch + 3 + at);
    };
    EXPECT_EQ(run(9.9), "put back");
    EXPECT_EQ(run(10), "remembered");
}

TEST_F(ControllerTest, TheRestorePassCapturesTheFactoryEDIDOfADisplayShowingItsOwn) {
    store->stored = {kept(ultrawideSettings())};
    attachUltrawide();
    start();
    clock->advanceTo(T + 3);
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull());
}

TEST_F(ControllerTest, InsideTheQuietTimeADisplayShowingTheOverrideIsPutBackIntoItsSavedMode) {
    store->stored = {kept(ultrawideSettings())};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    start();
    clock->advanceTo(T + 3); // launch counts as a hot-plug: quiet until T+10
    EXPECT_EQ(calls(), (Calls{"setMode dcp-1 2560×1440@60"}));
}

TEST_F(ControllerTest, OutsideTheQuietTimeADifferentCurrentModeBecomesTheSavedMode) {
    store->stored = {kept(ultrawideSettings())};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    start();
    clock->advanceTo(T + 11);
    system->setCurrentMode("dcp-1", split60); // the user picked the split
    system->calls.clear();
    system->fireConfigurationChange(false);
    clock->advance(3);
    EXPECT_TRUE(system->calls.empty());
    EXPECT_EQ(store->stored[0].lastMode, split60);
}

TEST_F(ControllerTest, APendingDisplayIsLeftAloneByTheRestorePass) {
    // An override kept earlier (it declares another screen size) is saved;
    // the port has lost it before the next pass, and the user applies the
    // split built from the monitor's own EDID.
    const Bytes earlier = foreignEDIDFor(ultrawideSplit(), 79);
    DisplaySettings s = kept(ultrawideSettings());
    s.overrideEDID = earlier;
    s.behavior = PBPBehavior::fixedMissingSplit;
    s.factoryFullEDID = ultrawideFull();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", earlier);
    startSettled();
    system->setOverride("dcp-1", std::nullopt);
    controller->applySplit(DisplayID("dcp-1"));
    ASSERT_EQ(system->overrideOn("dcp-1"), ultrawideSplit());
    system->calls.clear();
    const auto saves = store->saves.size();
    system->fireConfigurationChange(true);
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(system->overrideOn("dcp-1"), ultrawideSplit()) << "the pending EDID is still on the port";
    EXPECT_EQ(callCount("applyEDIDOverride dcp-1"), 0) << "the saved override was not written";
    EXPECT_EQ(store->saves.size(), saves) << "nothing saved for the pending display";
}

TEST_F(ControllerTest, ADisplayUnderObservationIsLeftAloneByTheRestorePass) {
    store->stored = {kept(ultrawideSettings())};
    attachUltrawide();
    startSettled(); // the override is written and the mode restored at launch
    clock->advance(10);
    system->setOverride("dcp-1", std::nullopt); // the monitor shows its own EDID again
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    ASSERT_TRUE(controller->isObservingPBP());
    system->calls.clear();
    system->fireConfigurationChange(true);
    clock->advance(3);
    EXPECT_TRUE(system->calls.empty()) << "the override is not rewritten while the user toggles";
}

TEST_F(ControllerTest, AFailedOverrideWriteInTheRestorePassIsReportedAndTheNextDisplayIsStillHandled) {
    DisplaySettings second(identityOf(superwideFull()), "DP-2", {5120, 1440});
    second.overrideEDID = *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture;
    store->stored = {kept(ultrawideSettings()), second};
    attachUltrawide();
    system->attach("dcp-2", superwideFull());
    system->failApply = std::make_exception_ptr(std::runtime_error("port busy"));
    start();
    clock->advanceTo(T + 3);
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1", "applyEDIDOverride dcp-2"}));
    EXPECT_EQ(errors, (std::vector<SplitError>{SplitError::hardware(DisplayOperation::writeOverride, "port busy"),
                                       SplitError::hardware(DisplayOperation::writeOverride, "port busy")}));
    EXPECT_TRUE(interruptIsChecked()) << "a refused write is no change of the controller's own";
}

TEST_F(ControllerTest, QuitRemovesOnlyEDIDsThisSystemWrote) {
    store->stored = {kept(ultrawideSettings())};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    system->attach("dcp-2", superwideFull()); // no settings: keeps whatever it has
    const Bytes& otherTools = *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture;
    system->setOverride("dcp-2", otherTools);
    startSettled();
    controller->restoreForQuit();
    EXPECT_EQ(calls(), (Calls{"restoreFactoryEDID dcp-1"}));
    EXPECT_EQ(system->overrideOn("dcp-2"), otherTools);
    EXPECT_TRUE(store->saves.empty());
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(store->stored[0].overrideEDID, ultrawideSplit()) << "restored at the next launch";
}

TEST_F(ControllerTest, QuitRemovesAPendingOverrideToo) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    system->calls.clear();
    controller->restoreForQuit();
    EXPECT_EQ(calls(), (Calls{"restoreFactoryEDID dcp-1"}));
}

TEST_F(ControllerTest, FactoryResetWithOneFailingDisplayKeepsOnlyThatMonitorsOverrideAndThrows) {
    const Bytes& superwideOverride = *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture;
    DisplaySettings second(identityOf(superwideFull()), "DP-2", {5120, 1440}, superwideOverride,
                           DisplayMode{5120, 1440, 60});
    DisplaySettings absent = kept(DisplaySettings({7, 7, 7}, std::nullopt, {2560, 1080}));
    store->stored = {kept(ultrawideSettings()), second, absent};
    attachUltrawide();
    system->attach("dcp-2", superwideFull());
    system->failRestoreOn["dcp-2"] = std::make_exception_ptr(std::runtime_error("port busy"));
    startSettled();
    try {
        controller->restoreFactory();
        FAIL() << "no error";
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::hardware(DisplayOperation::restoreFactory, "port busy"));
    }
    const auto& s = store->stored;
    ASSERT_EQ(s.size(), 3u);
    for (const auto& record : s) {
        if (record.identity == identityOf(superwideFull())) {
            EXPECT_EQ(record.overrideEDID, superwideOverride);
            EXPECT_EQ(record.lastMode, (DisplayMode{5120, 1440, 60}));
        } else {
            EXPECT_EQ(record.overrideEDID, std::nullopt);
            EXPECT_EQ(record.lastMode, std::nullopt);
            EXPECT_EQ(record.native.width > 0, true) << "other fields kept";
        }
    }
    EXPECT_EQ(store->saves.size(), 1u);
    EXPECT_EQ(changes, 1);
}

TEST_F(ControllerTest, FactoryResetIsRefusedWhileAChangeIsPending) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    system->calls.clear();
    EXPECT_THROW(controller->restoreFactory(), SplitError);
    EXPECT_TRUE(system->calls.empty());
}

TEST_F(ControllerTest, FactoryResetStartsTheOwnChangeCoolDown) {
    store->stored = {kept(ultrawideSettings())};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    startSettled();
    clock->advance(20);
    const double t = clock->now();
    controller->restoreFactory();
    EXPECT_FALSE(interruptIsChecked()) << "caused by the reset itself";
    clock->advance(2);
    EXPECT_FALSE(controller->switchPrompt());
    expectOwnChangeAt(t);
}

TEST_F(ControllerTest, TurningPBPOffOnASwitchingMonitorWhoseFullEDIDListsTheHalfChangesTheModeOnce) {
    // The monitor's own full EDID lists 1720×1440 too; PBP is on at launch.
    DisplaySettings s = ultrawideSettings();
    s.behavior = PBPBehavior::switchesOnToggle;
    s.lastMode = split60;
    store->stored = {s};
    system->attach("dcp-1", ultrawideHalf(), {split60}, split60, "DP-1");
    startSettled();
    // PBP off: the monitor re-enumerates with its full EDID, still at the half.
    system->setFactoryEDID("dcp-1", ultrawideSplit());
    system->setModes("dcp-1", {full60, qhd60, split60});
    system->fireConfigurationChange(true);
    clock->advance(3);
    EXPECT_EQ(calls(), (Calls{"setMode dcp-1 3440×1440@60"})) << "no detour back to the half";
    EXPECT_EQ(store->stored[0].lastMode, full60);
    clock->advance(20);
    system->fireConfigurationChange(false);
    clock->advance(3);
    EXPECT_EQ(calls().size(), 1u);
}

TEST_F(ControllerTest, FollowingASwitchingSuperwideBackToItsFullEDIDPicksTheWholePanel) {
    DisplaySettings s(identityOf(superwideFull()), "DP-1", {5120, 1440});
    s.behavior = PBPBehavior::switchesOnToggle;
    store->stored = {s};
    const Bytes& pbp = *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture;
    system->attach("dcp-1", pbp, {{2560, 1440, 60}}, DisplayMode{2560, 1440, 60});
    startSettled();
    // PBP off: the full EDID, and the system keeps the 2560×1440 it listed first.
    system->setFactoryEDID("dcp-1", superwideFull());
    system->setModes("dcp-1", {{2560, 1440, 60}, {5120, 1440, 60}});
    system->fireConfigurationChange(true);
    clock->advance(3);
    EXPECT_EQ(calls(), (Calls{"setMode dcp-1 5120×1440@60"}));
    EXPECT_EQ(store->stored[0].lastMode, (DisplayMode{5120, 1440, 60}));
}
