// Configuration changes, port interrupts, sleep and wake.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;


TEST_F(ControllerTest, ThreeConfigurationChangesASecondApartGiveOneRestorePassThreeSecondsAfterTheLast) {
    startSettled();
    const int before = probe->detections;
    const double t = clock->now();
    system->fireConfigurationChange(false);
    clock->advanceTo(t + 1);
    system->fireConfigurationChange(false);
    clock->advanceTo(t + 2);
    system->fireConfigurationChange(false);
    clock->advanceTo(t + 4.9);
    EXPECT_EQ(probe->detections, before) << "no pass yet";
    clock->advanceTo(t + 5);
    EXPECT_EQ(probe->detections, before + 1) << "one pass, 3 s after the third change";
    clock->advance(30);
    EXPECT_EQ(probe->detections, before + 1);
}

TEST_F(ControllerTest, HotPlugsExtendTheModeQuietTimeAndOtherChangesDoNot) {
    startSettled();
    const double t = clock->now();
    system->fireConfigurationChange(true);
    EXPECT_EQ(inspect().modeMemory().quietUntil, t + 10);
    clock->advanceTo(t + 2);
    system->fireConfigurationChange(true);
    EXPECT_EQ(inspect().modeMemory().quietUntil, t + 12);
    clock->advanceTo(t + 2.5);
    system->fireConfigurationChange(false);
    EXPECT_EQ(inspect().modeMemory().quietUntil, t + 12);
}

TEST_F(ControllerTest, AnInterruptWithinTheOwnChangeCooldownIsIgnoredAndOneAfterItLeadsToAnOffer) {
    attachUltrawideWithSplitKept();
    startSettled();
    const double t = clock->now();
    inspect().restoreMode(qhd60, DisplayID("dcp-1")); // the controller sets a mode
    system->setCurrentMode("dcp-1", full60);
    clock->advanceTo(t + 5);
    system->fireInterrupt();
    clock->advanceTo(t + 8.9);
    EXPECT_FALSE(controller->switchPrompt());
    clock->advanceTo(t + 9);
    system->fireInterrupt();
    clock->advanceTo(t + 9.9);
    EXPECT_FALSE(controller->switchPrompt());
    clock->advanceTo(t + 10);
    EXPECT_EQ(controller->switchPrompt(),
              (SwitchPrompt{DisplayID("dcp-1"), ModeChoice::split, {1720, 1440}, t + 40}));
}

TEST_F(ControllerTest, InterruptsWhileAsleepOrSoonAfterWakeAreIgnored) {
    attachUltrawideWithSplitKept();
    startSettled();
    const double t = clock->now();
    system->fireSleep(true);
    system->fireInterrupt();
    clock->advanceTo(t + 5);
    system->fireSleep(false);
    clock->advanceTo(t + 19.9);
    system->fireInterrupt();
    clock->advanceTo(t + 20.5);
    EXPECT_FALSE(controller->switchPrompt()) << "within 15 s of the wake";
    system->fireInterrupt();
    clock->advanceTo(t + 21.5);
    EXPECT_TRUE(controller->switchPrompt()) << "after the wake quiet period";
}

TEST_F(ControllerTest, TwoInterruptsHalfASecondApartGiveOnePromptCheck) {
    attachUltrawideWithSplitKept();
    startSettled();
    system->fireInterrupt();
    clock->advance(0.5);
    system->fireInterrupt();
    EXPECT_EQ(clock->pendingCount(), 1u);
    clock->advance(0.5);
    EXPECT_EQ(changes, 1) << "one offer";
}

TEST_F(ControllerTest, GoingToSleepCancelsAPromptCheckAboutToRun) {
    attachUltrawideWithSplitKept();
    startSettled();
    const auto idle = clock->pendingCount();
    system->fireInterrupt();
    ASSERT_EQ(clock->pendingCount(), idle + 1) << "the check is scheduled";
    ASSERT_EQ(clock->nextDeadline(), clock->now() + SplitController::promptDelay);
    clock->advance(0.9);
    system->fireSleep(true);
    EXPECT_EQ(clock->pendingCount(), idle) << "the check's timer is gone";
    clock->advance(5);
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_TRUE(inspect().inWakeQuiet());
}
