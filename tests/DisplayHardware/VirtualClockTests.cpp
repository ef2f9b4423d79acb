#include <DisplayHardware/VirtualClock.hpp>

#include <gtest/gtest.h>

#include <string>

using DisplayHardware::VirtualClock;

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
