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
    // The ultrawide, saved at full resolution; each run starts it afresh,
    // fires `events` (seconds from now, and whether each is a hot plug), and
    // says what a restore pass at `at` seconds from now does with the QHD the
    // user picked.
    attachUltrawide();
    const auto run = [&](const std::vector<std::pair<double, bool>>& events, double at) {
        DisplaySettings s = ultrawideSettings();
        s.lastMode = full60;
        store->stored = {s};
        system->setCurrentMode("dcp-1", full60);
        startSettled();
        const double t = clock->now();
        for (const auto& [after, isHotplug] : events) {
            clock->advanceTo(t + after);
            system->fireConfigurationChange(isHotplug);
        }
        return passAfterUserPicks(qhd60, t + at);
    };
    EXPECT_EQ(run({{0, true}}, 9.9), "put back");
    EXPECT_EQ(run({{0, true}}, 10), "remembered") << "quiet for 10 s after a hot plug";
    EXPECT_EQ(run({{0, true}, {2, true}}, 11.9), "put back") << "a second hot plug extends it";
    EXPECT_EQ(run({{0, true}, {2, true}}, 12), "remembered");
    EXPECT_EQ(run({{0, true}, {2, true}, {2.5, false}}, 12), "remembered")
        << "another change does not";
}

TEST_F(ControllerTest, AnInterruptWithinTheOwnChangeCooldownIsIgnoredAndOneAfterItLeadsToAnOffer) {
    attachUltrawideWithSplitKept();
    startSettled();
    const double t = clock->now();
    controller->switchTo(ModeChoice::split, DisplayID("dcp-1")); // the controller sets a mode
    ASSERT_EQ(calls(), (std::vector<std::string>{"setMode dcp-1 1720×1440@60"}));
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
    EXPECT_FALSE(interruptIsChecked()) << "the screens still sleep";
}
