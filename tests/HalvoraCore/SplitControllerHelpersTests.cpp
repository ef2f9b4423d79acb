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

TEST_F(ControllerTest, FactoryHasSplitReadsTheMonitorsOwnFullEDID) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    EXPECT_EQ(inspect().factoryHasSplit(DisplayID("dcp-1")), false);
    EXPECT_EQ(inspect().factoryHasSplit(DisplayID("dcp-9")), std::nullopt);
}

TEST_F(ControllerTest, RestoreModeOnlySetsAModeTheDisplayOffersAndIsNotIn) {
    attachUltrawide();
    startSettled();
    inspect().restoreMode(std::nullopt, DisplayID("dcp-1"));
    inspect().restoreMode(full60, DisplayID("dcp-1"));
    inspect().restoreMode(DisplayMode{3840, 2160, 60}, DisplayID("dcp-1"));
    EXPECT_TRUE(system->calls.empty());
    inspect().restoreMode(qhd60, DisplayID("dcp-1"));
    EXPECT_EQ(calls(), (std::vector<std::string>{"setMode dcp-1 2560×1440@60"}));
    EXPECT_EQ(inspect().lastOwnChange(), clock->now());
    EXPECT_EQ(changes, 1);
}

TEST_F(ControllerTest, AFailedModeRestoreGoesToOnError) {
    attachUltrawide();
    startSettled();
    system->failSetMode = std::make_exception_ptr(std::runtime_error("switching mode failed: -1"));
    inspect().restoreMode(qhd60, DisplayID("dcp-1"));
    EXPECT_EQ(errors, std::vector<SplitError>{SplitError::hardware(DisplayOperation::setMode, "switching mode failed: -1")});
    EXPECT_EQ(inspect().lastOwnChange(), std::nullopt);
    EXPECT_EQ(changes, 1);
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
    EXPECT_FALSE(inspect().refreshConflicts());
    EXPECT_EQ(changes, 0);
}

TEST_F(ControllerTest, WithNoConflictProbeNothingIsEverHeldBack) {
    controller = SplitController::create(system, clock, store, std::make_shared<NoConflictProbe>());
    EXPECT_TRUE(controller->conflicts().empty());
    EXPECT_FALSE(inspect().refreshConflicts());
    EXPECT_NO_THROW(NoConflictProbe().takeOver(ConflictingTool::edidOverrideService));
    EXPECT_TRUE(canTakeOver(ConflictingTool::edidOverrideService));
    EXPECT_FALSE(canTakeOver(ConflictingTool::betterDisplay));
}

TEST_F(ControllerTest, DismissingWithoutAnOfferDoesNothing) {
    startSettled();
    controller->dismissSwitchPrompt();
    EXPECT_EQ(changes, 0);
}
