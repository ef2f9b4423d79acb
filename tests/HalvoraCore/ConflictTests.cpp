// Other EDID tools: holding back restores, clearing their EDIDs, take-over.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

using Calls = std::vector<std::string>;

TEST_F(ControllerTest, WhileAToolIsActiveNothingIsRestoredThenItsEDIDsAreClearedOnceAndTheOverrideWritten) {
    DisplaySettings s = ultrawideSettings();
    s.overrideEDID = ultrawideSplit();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", foreignEDIDFor(ultrawideFull()));
    probe->present = {ConflictingTool::edidOverrideService};
    start();
    clock->advanceTo(T + 3);
    EXPECT_TRUE(system->calls.empty()) << "the first pass is skipped";
    EXPECT_TRUE(errors.empty());

    probe->present.clear();
    system->fireConfigurationChange(false);
    clock->advanceTo(T + 6);
    EXPECT_EQ(calls(), (Calls{"restoreFactoryEDID dcp-1"})) << "the foreign EDID is cleared once";
    EXPECT_FALSE(interruptIsChecked()) << "the clearing is the controller's own change";
    clock->advanceTo(T + 9);
    EXPECT_EQ(calls(), (Calls{"restoreFactoryEDID dcp-1", "applyEDIDOverride dcp-1"}));
    EXPECT_EQ(system->overrideOn("dcp-1"), ultrawideSplit());
}

TEST_F(ControllerTest, ThePassAfterClearingAnotherToolsEDIDsTakesTheDisplaysForJustPluggedIn) {
    // No override saved: only the mode the user picked is at stake.
    attachUltrawide();
    const auto run = [&](double at) {
        DisplaySettings s = ultrawideSettings();
        s.lastMode = full60;
        store->stored = {s};
        system->setOverride("dcp-1", foreignEDIDFor(ultrawideFull()));
        system->setCurrentMode("dcp-1", full60);
        probe->present = {ConflictingTool::edidOverrideService};
        system->calls.clear();
        const double launch = clock->now();
        start();
        clock->advanceTo(launch + 3);
        probe->present.clear();
        system->fireConfigurationChange(false);
        clock->advanceTo(launch + 6);
        EXPECT_EQ(calls(), (Calls{"restoreFactoryEDID dcp-1"}));
        return passAfterUserPicks(qhd60, launch + 6 + at);
    };
    EXPECT_EQ(run(9.9), "put back") << "quiet as after a plug-in";
    EXPECT_EQ(run(10), "remembered");
}

TEST_F(ControllerTest, OwnOverridesCapturedFactoryEDIDsAndUnknownMonitorsAreNotCleared) {
    DisplaySettings s = ultrawideSettings();
    s.overrideEDID = ultrawideSplit();
    s.factorySplitEDID = ultrawideHalf();
    store->stored = {s};
    attachUltrawide("dcp-1");
    system->setOverride("dcp-1", ultrawideSplit());
    system->attach("dcp-2", ultrawideHalf()); // same monitor model and serial: its captured split EDID
    system->attach("dcp-3", superwideFull()); // no settings
    system->setOverride("dcp-3", *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture);
    probe->present = {ConflictingTool::betterDisplay};
    start(); // the launch pass is held back, so the override is not on dcp-2 yet
    clock->advance(SplitController::restoreDebounce);
    ASSERT_TRUE(system->calls.empty());
    probe->present.clear();
    system->fireConfigurationChange(false);
    clock->advance(SplitController::restoreDebounce); // the tool is gone: its EDIDs are cleared
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 0);
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-2"), 0);
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-3"), 0);
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-2"}))
        << "nothing was cleared: the pass goes on at once";
}

TEST_F(ControllerTest, AFailedClearingIsReportedAndTheOthersAreStillCleared) {
    DisplaySettings s = ultrawideSettings();
    store->stored = {s, DisplaySettings(identityOf(superwideFull()), std::nullopt, {5120, 1440})};
    attachUltrawide("dcp-1");
    system->setOverride("dcp-1", foreignEDIDFor(ultrawideFull()));
    system->attach("dcp-2", superwideFull());
    system->setOverride("dcp-2", foreignEDIDFor(superwideFull()));
    probe->present = {ConflictingTool::betterDisplay};
    startSettled();
    system->failRestoreOn["dcp-1"] = std::make_exception_ptr(std::runtime_error("busy"));
    probe->present.clear();
    system->fireConfigurationChange(false);
    clock->advance(SplitController::restoreDebounce); // the tool is gone: its EDIDs are cleared
    EXPECT_EQ(calls(), (Calls{"restoreFactoryEDID dcp-1", "restoreFactoryEDID dcp-2"}));
    EXPECT_EQ(errors, std::vector<SplitError>{SplitError::hardware(DisplayOperation::restoreFactory, "busy")});
    EXPECT_EQ(clock->nextDeadline(), clock->now() + SplitController::restoreDebounce)
        << "something was cleared: a pass follows on the clean ports";
}

TEST_F(ControllerTest, TakingOverStopsTheToolAndAsksForARestorePass) {
    probe->present = {ConflictingTool::edidOverrideService};
    startSettled();
    controller->takeOver(ConflictingTool::edidOverrideService);
    EXPECT_EQ(probe->takeOvers, std::vector<ConflictingTool>{ConflictingTool::edidOverrideService});
    EXPECT_TRUE(controller->conflicts().empty());
    EXPECT_EQ(clock->nextDeadline(), clock->now() + 3);
}

TEST_F(ControllerTest, AFailedTakeOverIsThrownAndTheConflictStays) {
    probe->present = {ConflictingTool::edidOverrideService};
    probe->failTakeOver = std::make_exception_ptr(std::runtime_error("launchctl failed"));
    startSettled();
    try {
        controller->takeOver(ConflictingTool::edidOverrideService);
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::systemFailure("launchctl failed"));
    }
    EXPECT_EQ(controller->conflicts(), ConflictSet{ConflictingTool::edidOverrideService});
}

TEST_F(ControllerTest, CheckConflictsAsksForAPassOnlyWhenTheSetChanged) {
    startSettled();
    controller->checkConflicts();
    EXPECT_EQ(clock->pendingCount(), 0u);
    probe->present = {ConflictingTool::betterDisplay};
    controller->checkConflicts();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(clock->nextDeadline(), clock->now() + 3);
}

TEST_F(ControllerTest, TakingOverLeavesADisplayShowingItsCapturedFactoryFullEDIDAlone) {
    DisplaySettings s = ultrawideSettings();
    s.factoryFullEDID = ultrawideFull();
    store->stored = {s};
    attachUltrawide();
    probe->present = {ConflictingTool::edidOverrideService};
    startSettled();
    controller->takeOver(ConflictingTool::edidOverrideService);
    EXPECT_TRUE(controller->conflicts().empty());
    clock->advance(3); // the restore pass that clears what the tool left
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 0)
        << "the monitor's own EDID is nobody else's";
    clock->advance(10);
    EXPECT_TRUE(calls().empty());
}
