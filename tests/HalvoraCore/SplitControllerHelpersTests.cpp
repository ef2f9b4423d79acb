// The controller's lookups: display states, factory EDIDs, mode restore,
// conflicts and the empty machine.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

TEST_F(ControllerTest, DisplayStatesDescribeIdentifiedAndUnidentifiedDisplays) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    system->attach("dcp-2", superwideFull(), {}, DisplayMode{5120, 1440, 60});
    startSettled();
    const auto states = controller->displayStates();
    ASSERT_EQ(states.size(), 2u);
    EXPECT_EQ(states[0], (DisplayState{DisplayID("dcp-1"), "Halvora UW34", Resolution{3440, 1440},
                                       Resolution{1720, 1440}, true, ModeChoice::full, std::nullopt}));
    EXPECT_EQ(states[1], (DisplayState{DisplayID("dcp-2"), "Halvora SW49", std::nullopt, std::nullopt, false,
                                       std::nullopt, std::nullopt}));
}

TEST_F(ControllerTest, ADisplayWithAnUnreadableEDIDIsLeftOutOfTheStates) {
    system->attach("dcp-1", Bytes(100, 0));
    attachUltrawide("dcp-2");
    startSettled();
    const auto states = controller->displayStates();
    ASSERT_EQ(states.size(), 1u);
    EXPECT_EQ(states[0].id, DisplayID("dcp-2"));
}

TEST_F(ControllerTest, ACurrentModeAtNeitherResolutionIsNeitherChoice) {
    store->stored = {ultrawideSettings()};
    attachUltrawide("dcp-1", qhd60);
    startSettled();
    EXPECT_EQ(controller->displayStates()[0].current, std::nullopt);
    system->setCurrentMode("dcp-1", split60);
    EXPECT_EQ(controller->displayStates()[0].current, ModeChoice::split);
    EXPECT_FALSE(controller->displayStates()[0].isSplitApplied) << "the factory EDID lacks the split";
}

namespace {

/// The ultrawide's record with `mode` saved as the user's.
DisplaySettings withMode(DisplaySettings s, std::optional<DisplayMode> mode) {
    s.lastMode = mode;
    return s;
}

} // namespace

TEST_F(ControllerTest, ThePassPutsBackOnlyASavedModeTheDisplayOffersAndIsNotIn) {
    attachUltrawide();
    // Launch counts as a plug-in: its pass runs while the display settles and
    // puts the saved mode back rather than remembering the one shown.
    const auto launchWith = [&](std::optional<DisplayMode> saved) {
        store->stored = {withMode(ultrawideSettings(), saved)};
        system->calls.clear();
        start();
        changes = 0;
        clock->advance(SplitController::restoreDebounce);
    };
    for (const auto& saved : {std::optional<DisplayMode>(), std::optional(full60),
                              std::optional(DisplayMode{3840, 2160, 60})}) {
        launchWith(saved);
        EXPECT_TRUE(system->calls.empty());
        EXPECT_EQ(changes, 0);
        EXPECT_TRUE(interruptIsChecked()) << "nothing was changed on the display";
        clock->advance(SplitController::promptDelay);
    }
    launchWith(qhd60);
    EXPECT_EQ(calls(), (std::vector<std::string>{"setMode dcp-1 2560×1440@60"}));
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(interruptIsChecked()) << "the mode set is the controller's own change";
}

TEST_F(ControllerTest, AFailedModeRestoreGoesToOnError) {
    attachUltrawide();
    store->stored = {withMode(ultrawideSettings(), qhd60)};
    system->failSetMode = std::make_exception_ptr(std::runtime_error("switching mode failed: -1"));
    start();
    changes = 0;
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(calls(), (std::vector<std::string>{"setMode dcp-1 2560×1440@60"}));
    EXPECT_EQ(errors, std::vector<SplitError>{SplitError::hardware(DisplayOperation::setMode,
                                                                   "switching mode failed: -1")});
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(interruptIsChecked()) << "a refused mode set is no change of the controller's own";
}

TEST_F(ControllerTest, AMonitorUnpluggedWhileWatchedCannotTellWhetherItsOwnEDIDHasTheSplit) {
    // Attached, its own full EDID tells it lacks the split: a toggle without
    // a change would make it fixed without the split.
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    system->detach("dcp-1");
    wizard->finishToggle();
    EXPECT_EQ(wizard->step().behavior, PBPBehavior::latchedAtPlug) << "gone, it cannot be told";
}

TEST_F(ControllerTest, WithNoDisplaysEveryNamedOperationFailsWithDisplayNotFound) {
    startSettled();
    EXPECT_TRUE(controller->displayStates().empty());
    try {
        controller->applySplit(DisplayID("dcp-1"));
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::displayNotFound());
    }
    try {
        controller->switchTo(ModeChoice::split, DisplayID("dcp-1"));
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::displayNotFound());
    }
}

TEST_F(ControllerTest, TheSameConflictSetTwiceIsNoChange) {
    probe->present = {ConflictingTool::betterDisplay};
    startSettled();
    EXPECT_EQ(controller->conflicts(), ConflictSet{ConflictingTool::betterDisplay});
    const int detections = probe->detections;
    const auto idle = clock->pendingCount();
    controller->checkConflicts();
    EXPECT_EQ(probe->detections, detections + 1) << "probed again";
    EXPECT_EQ(controller->conflicts(), ConflictSet{ConflictingTool::betterDisplay});
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(clock->pendingCount(), idle) << "no restore pass is asked for";
}

TEST_F(ControllerTest, WithNoConflictProbeNothingIsEverHeldBack) {
    controller = SplitController::create(system, clock, store, std::make_shared<NoConflictProbe>());
    EXPECT_TRUE(controller->conflicts().empty());
    clock->advance(SplitController::restoreDebounce);
    int changed = 0;
    controller->onChange = [&] { ++changed; };
    controller->checkConflicts();
    EXPECT_TRUE(controller->conflicts().empty());
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(clock->pendingCount(), 0u) << "no restore pass is asked for";
    EXPECT_NO_THROW(NoConflictProbe().takeOver(ConflictingTool::edidOverrideService));
    EXPECT_TRUE(canTakeOver(ConflictingTool::edidOverrideService));
    EXPECT_FALSE(canTakeOver(ConflictingTool::betterDisplay));
}

TEST_F(ControllerTest, DismissingWithoutAnOfferDoesNothing) {
    startSettled();
    controller->dismissSwitchPrompt();
    EXPECT_EQ(changes, 0);
}
