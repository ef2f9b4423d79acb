// The recorded machine's main run loop on the virtual clock.

#include <HalvoraSimulation/VirtualRunLoop.hpp>
#include <gtest/gtest.h>

using namespace HalvoraPlatform;

namespace {

class RunLoopTest : public ::testing::Test {
protected:
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock = std::make_shared<HalvoraSimulation::VirtualClock>(100);
    HalvoraSimulation::VirtualRunLoop loop{clock};
    std::vector<double> fired;
    std::function<void()> record() {
        return [this] { fired.push_back(clock->now()); };
    }
};

} // namespace

TEST_F(RunLoopTest, ARepeatingTimerFiresEveryIntervalUntilInvalidated) {
    const auto timer = loop.addTimer(0.25, true, record(), 0);
    clock->advance(1);
    EXPECT_EQ(fired, (std::vector<double>{100.25, 100.5, 100.75, 101}));
    timer->invalidate();
    clock->advance(1);
    EXPECT_EQ(fired.size(), 4u);
    timer->invalidate(); // twice is harmless
}

TEST_F(RunLoopTest, AOneShotTimerFiresOnceAndLivesWithoutItsHandle) {
    loop.addTimer(3, false, record(), 0); // the run loop keeps it, as a real one does
    clock->advance(10);
    EXPECT_EQ(fired, (std::vector<double>{103}));
}

TEST_F(RunLoopTest, ATimerThatInvalidatesItselfStops) {
    std::shared_ptr<MainRunLoop::Timer> timer;
    timer = loop.addTimer(
        1, true,
        [&] {
            fired.push_back(clock->now());
            timer->invalidate();
        },
        0);
    clock->advance(5);
    EXPECT_EQ(fired, (std::vector<double>{101}));
}

TEST_F(RunLoopTest, DispatchedWorkRunsLaterNeverAtOnce) {
    loop.dispatchAsync(record());
    EXPECT_TRUE(fired.empty());
    clock->advance(0);
    EXPECT_EQ(fired, (std::vector<double>{100}));
    EXPECT_EQ(loop.now(), 100);
}

TEST_F(RunLoopTest, TimersThatFireAreCountedAndOnlyTheSetOnesAreListed) {
    const auto poll = loop.addTimer(0.25, true, record(), 0.025);
    loop.addTimer(3, false, record(), 0);
    EXPECT_EQ(loop.timers(),
              (std::vector<HalvoraSimulation::VirtualRunLoop::TimerSetting>{{0.25, true, 0.025}, {3, false, 0}}));
    clock->advance(3);
    EXPECT_EQ(loop.timerFirings(), 13u) << "twelve polls and the one-shot";
    EXPECT_EQ(loop.timers(), (std::vector<HalvoraSimulation::VirtualRunLoop::TimerSetting>{{0.25, true, 0.025}}));
    poll->invalidate();
    EXPECT_TRUE(loop.timers().empty());
    clock->advance(3);
    EXPECT_EQ(loop.timerFirings(), 13u);
}

TEST_F(RunLoopTest, DispatchedWorkIsNoTimerFiring) {
    loop.dispatchAsync(record());
    clock->advance(1);
    EXPECT_EQ(fired.size(), 1u);
    EXPECT_EQ(loop.timerFirings(), 0u);
}
