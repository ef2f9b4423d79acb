// Applying the split override, the confirmation timeline, keep and revert.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

using Calls = std::vector<std::string>;

TEST_F(ControllerTest, ConstructionLoadsProbesRegistersAndSchedulesALaunchRestorePass) {
    store->stored = {ultrawideSettings()};
    start();
    EXPECT_EQ(store->loads, 1);
    EXPECT_EQ(probe->detections, 1);
    EXPECT_EQ(system->observerRegistrations, 3);
    EXPECT_EQ(clock->nextDeadline(), T + 3) << "launch is handled like a plug-in";
}

TEST_F(ControllerTest, LaunchKeepsTheModeQuietForTenSecondsLikeAPlugIn) {
    attachUltrawide();
    const auto run = [&](double at) {
        DisplaySettings s = ultrawideSettings();
        s.lastMode = full60;
        store->stored = {s};
        system->setCurrentMode("dcp-1", full60);
        const double launch = clock->now();
        start();
        return passAfterUserPicks(qhd60, launch + at);
    };
    EXPECT_EQ(run(9.9), "put back");
    EXPECT_EQ(run(10), "remembered");
}

TEST_F(ControllerTest, ApplyWritesTheSplitOverrideAndOpensAConfirmation) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    const double applied = clock->now();
    controller->applySplit(DisplayID("dcp-1"));
    ASSERT_EQ(system->calls.size(), 1u);
    EXPECT_EQ(system->calls[0].description(), "applyEDIDOverride dcp-1");
    EXPECT_EQ(system->calls[0].edid, ultrawideSplit());
    EXPECT_EQ(controller->pendingConfirmation(),
              (PendingConfirmation{DisplayID("dcp-1"), clock->now() + 15}));
    EXPECT_TRUE(store->saves.empty()) << "nothing is saved before the user keeps it";
    EXPECT_EQ(changes, 0) << "the caller refreshes";
    expectOwnChangeAt(applied);
    EXPECT_TRUE(store->saves.empty());
    EXPECT_EQ(changes, 0);
}

TEST_F(ControllerTest, AnAppliedOverrideKeepsTheModeQuietForTenSeconds) {
    attachUltrawide();
    const auto run = [&](double at) {
        store->stored = {ultrawideSettings()};
        system->setOverride("dcp-1", std::nullopt);
        system->setCurrentMode("dcp-1", full60);
        startSettled();
        const double t = clock->now();
        controller->applySplit(DisplayID("dcp-1"));
        controller->keep();
        return passAfterUserPicks(qhd60, t + at);
    };
    EXPECT_EQ(run(9.9), "put back");
    EXPECT_EQ(run(10), "remembered");
}

TEST_F(ControllerTest, ConfirmationTimelineRestoresTheModeRevertsAndRestoresTheModeAgain) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    const double t0 = clock->now();
    controller->applySplit(DisplayID("dcp-1"));
    // Writing the EDID made the display come up in a mode of its own.
    system->setCurrentMode("dcp-1", split60);
    EXPECT_EQ(controller->pendingConfirmation()->deadline, t0 + 15);

    clock->advanceTo(t0 + 2.9);
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"}));
    clock->advanceTo(t0 + 3);
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1", "setMode dcp-1 3440×1440@60"})) << "previous mode back at T+3";

    system->setCurrentMode("dcp-1", split60); // the user looked at the split meanwhile
    clock->advanceTo(t0 + 14.9);
    EXPECT_TRUE(controller->pendingConfirmation());
    clock->advanceTo(t0 + 15);
    EXPECT_FALSE(controller->pendingConfirmation()) << "reverted at the deadline";
    EXPECT_EQ(calls().back(), "restoreFactoryEDID dcp-1");
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt);

    clock->advanceTo(t0 + 17.9);
    EXPECT_EQ(calls().size(), 3u);
    clock->advanceTo(t0 + 18);
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1", "setMode dcp-1 3440×1440@60", "restoreFactoryEDID dcp-1",
                              "setMode dcp-1 3440×1440@60"}))
        << "previous mode again at T+18";
    EXPECT_TRUE(store->saves.empty());
}

TEST_F(ControllerTest, RevertReappliesThePreviousEDIDWhenTheDisplayDoesNotReportIt) {
    // An override kept in an earlier run is on the port; removing the new one
    // brings back the factory EDID, not that override.
    DisplaySettings saved = ultrawideSettings();
    const Bytes earlier = EDIDKit::EDID(ultrawideFull()).mergingSplitVersion(EDIDKit::EDID(ultrawideHalf())).bytes();
    saved.overrideEDID = earlier;
    saved.behavior = PBPBehavior::fixedMissingSplit; // the target is built from the current EDID
    store->stored = {saved};
    attachUltrawide();
    system->setOverride("dcp-1", earlier);
    startSettled();
    const double t0 = clock->now();
    controller->applySplit(DisplayID("dcp-1"));
    controller->revert();
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1", "restoreFactoryEDID dcp-1"}));
    clock->advanceTo(t0 + 3);
    ASSERT_EQ(calls().size(), 3u);
    EXPECT_EQ(calls()[2], "applyEDIDOverride dcp-1");
    EXPECT_EQ(system->calls[2].edid, earlier) << "the kept override of the earlier run is put back";
    system->setCurrentMode("dcp-1", qhd60);
    clock->advanceTo(t0 + 6);
    EXPECT_EQ(calls().back(), "setMode dcp-1 3440×1440@60") << "then the previous mode, 3 s later";
    EXPECT_EQ(store->stored.front().overrideEDID, earlier) << "settings untouched by revert";
}

TEST_F(ControllerTest, KeepSavesTheOverrideAndThePreviousMode) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    controller->keep();
    EXPECT_FALSE(controller->pendingConfirmation());
    ASSERT_EQ(store->saves.size(), 1u);
    EXPECT_EQ(store->stored.back().overrideEDID, ultrawideSplit());
    EXPECT_EQ(store->stored.back().lastMode, full60);
    EXPECT_EQ(changes, 1);
    clock->advance(20);
    EXPECT_EQ(system->overrideOn("dcp-1"), ultrawideSplit()) << "no revert after keep";
}

TEST_F(ControllerTest, KeepDoesNotStopThePreviousModeComingBack) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    system->setCurrentMode("dcp-1", split60);
    controller->keep();
    clock->advance(3);
    EXPECT_EQ(calls().back(), "setMode dcp-1 3440×1440@60");
}

TEST_F(ControllerTest, KeepWithoutAPreviousModeLeavesTheSavedModeAsItWas) {
    DisplaySettings saved = ultrawideSettings();
    saved.lastMode = qhd60;
    store->stored = {saved};
    attachUltrawide("dcp-1", std::nullopt);
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    controller->keep();
    EXPECT_EQ(store->stored.back().lastMode, qhd60);
    EXPECT_EQ(store->stored.back().overrideEDID, ultrawideSplit());
}

TEST_F(ControllerTest, KeepAfterTheDisplayWasUnpluggedSavesNothing) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    system->detach("dcp-1");
    controller->keep();
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_TRUE(store->saves.empty());
    EXPECT_EQ(changes, 1);
}

TEST_F(ControllerTest, KeepAndRevertWithNothingPendingDoNothing) {
    attachUltrawide();
    startSettled();
    controller->keep();
    controller->revert();
    EXPECT_TRUE(system->calls.empty());
    EXPECT_TRUE(store->saves.empty());
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(errors.empty());
}

TEST_F(ControllerTest, ApplyWhileAnotherDisplaysChangeIsPendingFailsAndLeavesTheFirstAlone) {
    DisplaySettings second({identityOf(superwideFull())}, "DP-2", {5120, 1440});
    store->stored = {ultrawideSettings(), second};
    attachUltrawide();
    system->attach("dcp-2", superwideFull(), {{5120, 1440, 60}}, DisplayMode{5120, 1440, 60});
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    const auto first = controller->pendingConfirmation();
    try {
        controller->applySplit(DisplayID("dcp-2"));
        FAIL() << "applied";
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::confirmationPending());
    }
    EXPECT_EQ(controller->pendingConfirmation(), first);
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"}));
}

TEST_F(ControllerTest, ApplyFailuresLeaveNoTrace) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    const auto expectFailure = [&](const DisplayID& id, const SplitError& expected) {
        try {
            controller->applySplit(id);
            ADD_FAILURE() << "applied";
        } catch (const SplitError& e) {
            EXPECT_EQ(e, expected);
        }
        EXPECT_FALSE(controller->pendingConfirmation());
        EXPECT_TRUE(store->saves.empty());
        EXPECT_EQ(clock->pendingCount(), 0u) << "no timers";
        EXPECT_TRUE(interruptIsChecked()) << "nothing was changed on a display";
        clock->advance(SplitController::promptDelay);
        EXPECT_FALSE(controller->switchPrompt());
    };
    expectFailure(DisplayID("dcp-9"), SplitError::displayNotFound());
    system->failApply = std::make_exception_ptr(std::runtime_error("IOAVServiceSetVirtualEDIDMode failed"));
    expectFailure(DisplayID("dcp-1"), SplitError::hardware(DisplayOperation::writeOverride, "IOAVServiceSetVirtualEDIDMode failed"));
}

TEST_F(ControllerTest, ApplyToAnUnidentifiedOrUnreadableDisplayFails) {
    system->attach("dcp-1", ultrawideFull(), {full60}, full60);
    system->attach("dcp-2", Bytes(100, 0), {}, std::nullopt);
    startSettled();
    try {
        controller->applySplit(DisplayID("dcp-1"));
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::notIdentified());
    }
    try {
        controller->applySplit(DisplayID("dcp-2"));
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::unreadableEDID());
    }
    EXPECT_TRUE(system->calls.empty());
}

TEST_F(ControllerTest, ASplitThatCannotBeBuiltIsReportedWithItsEDIDError) {
    // A 128-byte EDID without a CTA-861 block has no room for the split timing.
    const Bytes baseOnly = EDIDKit::EDID(ultrawideFull()).withoutExtensions().bytes();
    store->stored = {{identityOf(baseOnly), std::nullopt, {3440, 1440}}};
    system->attach("dcp-1", baseOnly, {full60}, full60);
    startSettled();
    try {
        controller->applySplit(DisplayID("dcp-1"));
        FAIL() << "applied";
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::cannotAddSplit(EDIDKit::EDIDError::noCTAExtension()));
    }
}

TEST_F(ControllerTest, ARevertWhoseFactoryRestoreFailsReportsItAndGoesOn) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    system->failRestore = std::make_exception_ptr(std::runtime_error("restore refused"));
    controller->revert();
    EXPECT_EQ(errors, std::vector<SplitError>{SplitError::hardware(DisplayOperation::restoreFactory, "restore refused")});
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(clock->nextDeadline(), clock->now() + 3) << "the follow-up still runs";
}

TEST_F(ControllerTest, ApplyWithdrawsAnOpenSwitchOffer) {
    attachUltrawideWithSplitKept();
    startSettled();
    interruptAndAwaitOffer();
    ASSERT_EQ(controller->switchPrompt(),
              (SwitchPrompt{DisplayID("dcp-1"), ModeChoice::split, {1720, 1440}, clock->now() + 30}));
    changes = 0;
    controller->applySplit(DisplayID("dcp-1"));
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_EQ(changes, 1) << "withdrawing the offer is a visible change";
}

TEST_F(ControllerTest, AReleasedControllersTimersDoNothing) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    const std::weak_ptr<SplitController> weak = controller;
    controller.reset();
    EXPECT_TRUE(weak.expired()) << "nothing the controller scheduled keeps it alive";
    system->calls.clear();
    clock->advance(60);
    system->fireConfigurationChange(true);
    system->fireInterrupt();
    system->fireSleep(true);
    clock->advance(60);
    EXPECT_TRUE(system->calls.empty());
}
