#include <HalvoraCore/OwnedTimers.hpp>

#include <HalvoraSimulation/VirtualClock.hpp>

#include <gtest/gtest.h>

using namespace HalvoraCore;

TEST(OwnedTimers, ActionsRunOnlyWhileTheirOwnerLives) {
    auto clock = std::make_shared<HalvoraSimulation::VirtualClock>(0);
    OwnedTimers timers(clock);
    auto owner = std::make_shared<int>(0);
    timers.tieTo(owner);
    int runs = 0;
    timers.after(1, [&] { ++runs; });
    timers.after(2, [&] { ++runs; });
    clock->advance(1);
    EXPECT_EQ(runs, 1);
    owner.reset();
    clock->advance(1);
    EXPECT_EQ(runs, 1) << "the owner is gone";
}

TEST(OwnedTimers, RestartingASlotReplacesItsTask) {
    auto clock = std::make_shared<HalvoraSimulation::VirtualClock>(0);
    OwnedTimers timers(clock);
    auto owner = std::make_shared<int>(0);
    timers.tieTo(owner);
    std::optional<ScheduledTask> slot;
    std::vector<int> ran;
    timers.restart(slot, 3, [&] { ran.push_back(1); });
    clock->advance(2);
    timers.restart(slot, 3, [&] { ran.push_back(2); });
    clock->advance(10);
    EXPECT_EQ(ran, std::vector<int>{2});
    timers.restart(slot, 3, [&] { ran.push_back(3); });
    OwnedTimers::cancel(slot);
    EXPECT_FALSE(slot);
    clock->advance(10);
    EXPECT_EQ(ran, std::vector<int>{2});
}
