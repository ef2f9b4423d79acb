#include <HalvoraSimulation/VirtualClock.hpp>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using HalvoraSimulation::VirtualClock;

TEST(VirtualClock, TimeMovesOnlyWhenAdvanced) {
    VirtualClock s(100);
    EXPECT_EQ(s.now(), 100);
    bool ran = false;
    s.schedule(5, [&] { ran = true; });
    EXPECT_FALSE(ran);
    s.advance(4.9);
    EXPECT_FALSE(ran);
    s.advance(0.1);
    EXPECT_TRUE(ran);
    EXPECT_EQ(s.now(), 105);
}

TEST(VirtualClock, DueTasksRunInDeadlineOrderTiesInSchedulingOrder) {
    VirtualClock s;
    std::string order;
    s.schedule(3, [&] { order += "c"; });
    s.schedule(1, [&] { order += "a"; });
    s.schedule(3, [&] { order += "d"; });
    s.schedule(2, [&] { order += "b"; });
    s.advance(10);
    EXPECT_EQ(order, "abcd");
}

TEST(VirtualClock, ATaskSeesTheClockAtItsDeadline) {
    VirtualClock s;
    double seen = -1;
    s.schedule(2, [&] { seen = s.now(); });
    s.advance(10);
    EXPECT_EQ(seen, 2);
    EXPECT_EQ(s.now(), 10);
}

TEST(VirtualClock, CancelledTasksNeverRunAndCancellingAgainIsHarmless) {
    VirtualClock s;
    bool ran = false;
    auto task = s.schedule(1, [&] { ran = true; });
    task.cancel();
    task.cancel();
    s.advance(5);
    EXPECT_FALSE(ran);
    EXPECT_EQ(s.pendingCount(), 0u);
}

TEST(VirtualClock, CancellingATaskThatRanDoesNothing) {
    VirtualClock s;
    int runs = 0;
    auto task = s.schedule(1, [&] { ++runs; });
    s.advance(1);
    task.cancel();
    s.advance(5);
    EXPECT_EQ(runs, 1);
}

TEST(VirtualClock, TasksScheduledByRunningTasksRunWithinTheSameAdvance) {
    VirtualClock s;
    std::string order;
    s.schedule(1, [&] {
        order += "a";
        s.schedule(1, [&] { order += "b"; });
        s.schedule(10, [&] { order += "late"; });
    });
    s.advance(3);
    EXPECT_EQ(order, "ab");
    EXPECT_EQ(s.pendingCount(), 1u);
    EXPECT_EQ(s.nextDeadline(), 11);
}

TEST(VirtualClock, ATaskDueAtOnceRunsOnTheNextTurnNotWhileBeingScheduled) {
    VirtualClock s;
    bool ran = false;
    s.schedule(0, [&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_EQ(s.pendingCount(), 1u);
    s.advance(0);
    EXPECT_TRUE(ran);
    EXPECT_EQ(s.now(), 0);
}

TEST(VirtualClock, ANegativeDelayCountsAsNone) {
    VirtualClock s(10);
    bool ran = false;
    s.schedule(-5, [&] { ran = true; });
    EXPECT_EQ(s.nextDeadline(), 10);
    s.advance(0);
    EXPECT_TRUE(ran);
    EXPECT_EQ(s.now(), 10);
}

TEST(VirtualClock, AMixOfManyTasksRunsInDeadlineOrderWithCancelledOnesLeftOut) {
    HalvoraSimulation::VirtualClock clock;
    std::vector<std::pair<double, int>> ran;
    std::vector<HalvoraCore::ScheduledTask> tasks;
    // Deadlines out of order, many of them equal, every third one cancelled.
    for (int i = 0; i < 3000; ++i) {
        const double after = (i * 7919) % 101;
        tasks.push_back(
            clock.schedule(after, [&ran, &clock, i] { ran.emplace_back(clock.now(), i); }));
    }
    for (std::size_t i = 0; i < tasks.size(); i += 3)
        tasks[i].cancel();
    EXPECT_EQ(clock.pendingCount(), 2000u);
    std::optional<double> earliest;
    for (int i = 0; i < 3000; ++i)
        if (i % 3 != 0 && (!earliest || (i * 7919) % 101 < *earliest)) earliest = (i * 7919) % 101;
    EXPECT_EQ(clock.nextDeadline(), earliest);
    clock.advance(100);
    ASSERT_EQ(ran.size(), 2000u);
    for (std::size_t i = 1; i < ran.size(); ++i) {
        EXPECT_TRUE(ran[i - 1].first < ran[i].first ||
                    (ran[i - 1].first == ran[i].first && ran[i - 1].second < ran[i].second))
            << "task " << ran[i].second << " ran out of order";
        EXPECT_NE(ran[i].second % 3, 0);
    }
    EXPECT_EQ(clock.pendingCount(), 0u);
    EXPECT_EQ(clock.nextDeadline(), std::nullopt);
}

TEST(VirtualClock, ATimerRestartedOverAndOverKeepsOnlyItsLastFiring) {
    HalvoraSimulation::VirtualClock clock;
    int fired = 0;
    HalvoraCore::ScheduledTask timer;
    for (int i = 0; i < 10000; ++i) {
        timer.cancel();
        timer = clock.schedule(15, [&fired] { ++fired; });
    }
    EXPECT_EQ(clock.pendingCount(), 1u);
    clock.advance(15);
    EXPECT_EQ(fired, 1);
}

TEST(VirtualClock, ATaskCancelledByAnEarlierTaskOfTheSameAdvanceDoesNotRun) {
    HalvoraSimulation::VirtualClock clock;
    bool laterRan = false;
    auto later = clock.schedule(5, [&laterRan] { laterRan = true; });
    clock.schedule(2, [&later] { later.cancel(); });
    clock.advance(10);
    EXPECT_FALSE(laterRan);
    EXPECT_EQ(clock.pendingCount(), 0u);
}
