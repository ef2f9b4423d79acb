// The controller tells the display system to watch for port interrupts only
// while one could be acted on: during a PBP observation, or while an attached
// display with its split applied could be offered a switch.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

namespace {

class InterruptWatchTest : public ControllerTest {};

} // namespace

TEST_F(InterruptWatchTest, WithNoDisplayAttachedNothingIsWatched) {
    start();
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(system->interruptsWatched, (std::vector<bool>{false}));
    system->fireConfigurationChange(true);
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(system->interruptsWatched, (std::vector<bool>{false}))
        << "still nothing to watch for";
}

TEST_F(InterruptWatchTest, AnUnidentifiedMonitorIsNotWatched) {
    attachUltrawide();
    start();
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(system->interruptsWatched, (std::vector<bool>{false}));
}

TEST_F(InterruptWatchTest, AMonitorWithItsSplitKeptAndUnknownOrLatchingBehaviourIsWatched) {
    for (const auto behavior :
         {std::optional<PBPBehavior>(), std::optional(PBPBehavior::latchedAtPlug)}) {
        system = std::make_shared<TestDoubles::ScriptedDisplaySystem>();
        attachUltrawideWithSplitKept(behavior);
        start();
        clock->advance(SplitController::restoreDebounce);
        EXPECT_EQ(system->interruptsWatched, (std::vector<bool>{true}));
    }
}

TEST_F(InterruptWatchTest, AMonitorThatNeverInterruptsUsefullyIsNotWatched) {
    for (const auto behavior : {PBPBehavior::switchesOnToggle, PBPBehavior::fixedWithSplit,
                                PBPBehavior::fixedMissingSplit}) {
        system = std::make_shared<TestDoubles::ScriptedDisplaySystem>();
        attachUltrawideWithSplitKept(behavior);
        start();
        clock->advance(SplitController::restoreDebounce);
        EXPECT_EQ(system->interruptsWatched, (std::vector<bool>{false})) << rawValue(behavior);
    }
}

TEST_F(InterruptWatchTest, TheWatchEndsWhenTheWatchedMonitorIsUnplugged) {
    attachUltrawideWithSplitKept(PBPBehavior::latchedAtPlug);
    start();
    clock->advance(SplitController::restoreDebounce);
    system->detach("dcp-1");
    system->fireConfigurationChange(true);
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(system->interruptsWatched, (std::vector<bool>{true, false}));
}

TEST_F(InterruptWatchTest, APBPObservationIsWatchedFromItsStartToItsEnd) {
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID{"dcp-1"});
    wizard->confirm({3440, 1440});
    ASSERT_TRUE(controller->isObservingPBP());
    EXPECT_EQ(system->interruptsWatched.back(), true);
    wizard->cancel();
    EXPECT_FALSE(controller->isObservingPBP());
    EXPECT_EQ(system->interruptsWatched.back(), false);
}
