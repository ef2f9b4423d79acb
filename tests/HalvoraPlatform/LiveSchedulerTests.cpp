// The core's clock and timers on the main run loop.

#include <HalvoraPlatform/LiveScheduler.hpp>
#include <HalvoraSimulation/VirtualRunLoop.hpp>
#include <gtest/gtest.h>

using namespace HalvoraPlatform;

namespace {

class LiveSchedulerTest : public ::testing::Test {
protected:
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>(500);
    HalvoraPlatform::LiveScheduler scheduler{std::make_shared<HalvoraSimulation::VirtualRunLoop>(clock)};
    std::vector<double> ran;
};

} // namespace

TEST_F(LiveSchedulerTest, NowIsTheRunLoopsClockAndATaskRunsOnceAfterItsDelay) {
    EXPECT_EQ(scheduler.now(), 500);
    scheduler.schedule(3, [&] { ran.push_back(scheduler.now()); });
    clock->advance(2.9);
    EXPECT_TRUE(ran.empty());
    clock->advance(10);
    EXPECT_EQ(ran, (std::vector<double>{503}));
}

TEST_F(LiveSchedulerTest, ACancelledTaskNeverRunsAndCancellingAgainOrAfterItRanIsHarmless) {
    const auto cancelled = scheduler.schedule(1, [&] { ran.push_back(1); });
    const auto done = scheduler.schedule(1, [&] { ran.push_back(2); });
    cancelled.cancel();
    clock->advance(5);
    cancelled.cancel();
    done.cancel();
    EXPECT_EQ(ran, (std::vector<double>{2}));
}

TEST_F(LiveSchedulerTest, ATaskWithoutDelayRunsOnALaterTurnNotSynchronously) {
    scheduler.schedule(0, [&] { ran.push_back(0); });
    scheduler.schedule(-4, [&] { ran.push_back(-4); });
    EXPECT_TRUE(ran.empty());
    clock->advance(0);
    EXPECT_EQ(ran, (std::vector<double>{0, -4}));
}
