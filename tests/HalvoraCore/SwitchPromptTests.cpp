// Switch offers after a port interrupt, and switching modes.

#include "ControllerFixture.hpp"

#include <stdexcept>

using namespace ControllerTesting;

class SwitchPromptTest : public ControllerTest {
protected:
    /// The ultrawide with the split on the port, at full resolution, with the given behaviour.
    void attachSplitApplied(std::optional<PBPBehavior> behavior) {
        attachUltrawideWithSplitKept(behavior);
        startSettled();
    }
};

TEST_F(SwitchPromptTest, OffersAreMadeForUnknownAndLatchingMonitorsOnly) {
    for (auto behavior : {std::optional<PBPBehavior>(), std::optional(PBPBehavior::latchedAtPlug)}) {
        attachSplitApplied(behavior);
        interruptAndAwaitOffer();
        EXPECT_TRUE(controller->switchPrompt());
    }
    for (auto behavior : {PBPBehavior::switchesOnToggle, PBPBehavior::fixedMissingSplit, PBPBehavior::fixedWithSplit}) {
        attachSplitApplied(behavior);
        interruptAndAwaitOffer();
        EXPECT_FALSE(controller->switchPrompt()) << rawValue(behavior);
    }
}

TEST_F(SwitchPromptTest, ADisplayWithoutTheSplitAppliedGetsNoOffer) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    interruptAndAwaitOffer();
    EXPECT_FALSE(controller->switchPrompt());
}

TEST_F(SwitchPromptTest, TheOfferIsTheOtherResolution) {
    attachSplitApplied(std::nullopt);
    system->setCurrentMode("dcp-1", split60);
    interruptAndAwaitOffer();
    EXPECT_EQ(controller->switchPrompt(),
              (SwitchPrompt{DisplayID("dcp-1"), ModeChoice::full, {3440, 1440}, clock->now() + 30}));
}

TEST_F(SwitchPromptTest, AnUnansweredOfferLapsesAfterThirtySecondsWithOneChange) {
    attachSplitApplied(std::nullopt);
    interruptAndAwaitOffer();
    changes = 0;
    clock->advance(29.9);
    EXPECT_TRUE(controller->switchPrompt());
    clock->advance(0.1);
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_EQ(changes, 1);
}

TEST_F(SwitchPromptTest, AcceptingSwitchesAndRemembersTheMode) {
    attachSplitApplied(std::nullopt);
    interruptAndAwaitOffer();
    controller->acceptSwitchPrompt();
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_EQ(calls(), (std::vector<std::string>{"setMode dcp-1 1720×1440@60"}));
    EXPECT_EQ(store->stored[0].lastMode, split60);
    const double switched = clock->now();
    controller->acceptSwitchPrompt(); // nothing offered any more
    EXPECT_EQ(calls().size(), 1u);
    expectOwnChangeAt(switched);
}

TEST_F(SwitchPromptTest, SwitchToPicksTheHighestRefreshAndTheFirstAmongEquals) {
    attachSplitApplied(std::nullopt);
    system->setModes("dcp-1", {full60, {1720, 1440, 60}, {1720, 1440, 100}, {1720, 1440, 100}, {1720, 1441, 144}});
    controller->switchTo(ModeChoice::split, DisplayID("dcp-1"));
    EXPECT_EQ(calls(), (std::vector<std::string>{"setMode dcp-1 1720×1440@100"}));
}

TEST_F(SwitchPromptTest, SwitchToFailsForUnidentifiedDisplaysAndMissingModes) {
    system->attach("dcp-2", superwideFull(), {}, std::nullopt);
    attachSplitApplied(std::nullopt);
    try {
        controller->switchTo(ModeChoice::full, DisplayID("dcp-2"));
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::notIdentified());
    }
    system->setModes("dcp-1", {full60});
    try {
        controller->switchTo(ModeChoice::split, DisplayID("dcp-1"));
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::modeUnavailable({1720, 1440}));
    }
}

TEST_F(SwitchPromptTest, NoOfferWhileAChangeIsPending) {
    attachSplitApplied(std::nullopt);
    controller->applySplit(DisplayID("dcp-1"));
    clock->advance(10); // past the cool-down
    interruptAndAwaitOffer();
    EXPECT_FALSE(controller->switchPrompt());
}

TEST(FastestMode, TheHighestRefreshOfTheWantedSizeAndTheFirstAmongEqualRates) {
    const std::vector<DisplayMode> modes{{1720, 1440, 60}, {1720, 1440, 100}, {1720, 1441, 144},
                                         {1720, 1440, 100}, {1720, 1440, 75}};
    EXPECT_EQ(fastestModeIndex(modes, {1720, 1440}), 1u) << "not the second 100 Hz mode at index 3";
    EXPECT_EQ(fastestModeIndex(modes, {1720, 1441}), 2u);
    EXPECT_EQ(fastestModeIndex(modes, {3440, 1440}), std::nullopt);
    EXPECT_EQ(fastestModeIndex({}, {3440, 1440}), std::nullopt);
}

TEST_F(SwitchPromptTest, AFailedSwitchAfterAcceptingGoesToTheErrorAlert) {
    attachSplitApplied(std::nullopt);
    interruptAndAwaitOffer();
    system->failSetMode = std::make_exception_ptr(std::runtime_error("switching mode failed: 1001"));
    controller->acceptSwitchPrompt();
    EXPECT_EQ(errors, (std::vector<SplitError>{SplitError::hardware(DisplayOperation::setMode, "switching mode failed: 1001")}));
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_EQ(store->stored[0].lastMode, std::nullopt) << "nothing remembered";
}
