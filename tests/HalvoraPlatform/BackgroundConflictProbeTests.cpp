// Looking for conflicting tools without making the main thread wait.

#include "MemorySettingsStore.hpp"
#include "ScriptedBackgroundQueue.hpp"
#include "ScriptedConflictProbe.hpp"
#include "ScriptedDisplaySystem.hpp"

#include <HalvoraPlatform/BackgroundConflictProbe.hpp>
#include <HalvoraPlatform/ThreadBackgroundQueue.hpp>
#include <HalvoraSimulation/VirtualRunLoop.hpp>
#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

using namespace HalvoraPlatform;
using HalvoraCore::ConflictingTool;
using HalvoraCore::ConflictSet;

namespace {

class BackgroundProbeTest : public ::testing::Test {
protected:
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>();
    std::shared_ptr<TestDoubles::ScriptedBackgroundQueue> queue =
        std::make_shared<TestDoubles::ScriptedBackgroundQueue>();
    std::shared_ptr<TestDoubles::ScriptedConflictProbe> real = std::make_shared<TestDoubles::ScriptedConflictProbe>();
    std::shared_ptr<HalvoraPlatform::BackgroundConflictProbe> probe = HalvoraPlatform::BackgroundConflictProbe::create(
        real, queue, std::make_shared<HalvoraSimulation::VirtualRunLoop>(clock));
    int newResults = 0;
    void SetUp() override {
        probe->onNewResult = [this] { ++newResults; };
    }
    /// The background look runs, and its result reaches the main thread.
    void finishLook() {
        queue->runAll();
        clock->advance(0);
    }
};

} // namespace

TEST_F(BackgroundProbeTest, DetectAnswersAtOnceWithTheLatestKnownResultAndLooksInTheBackground) {
    real->present = {ConflictingTool::edidOverrideService};
    EXPECT_EQ(probe->detect(), ConflictSet{}) << "nothing is known yet";
    EXPECT_EQ(real->detections, 0) << "the real probe does not run on the caller's thread";
    EXPECT_TRUE(probe->isLooking());
    finishLook();
    EXPECT_FALSE(probe->isLooking());
    EXPECT_EQ(newResults, 1);
    EXPECT_EQ(probe->detect(), ConflictSet{ConflictingTool::edidOverrideService});
    EXPECT_EQ(queue->waiting(), 0u)
        << "the fresh result answers that question without another look";
}

TEST_F(BackgroundProbeTest, OneLookAtATime) {
    probe->detect();
    probe->detect();
    probe->detect();
    EXPECT_EQ(queue->waiting(), 1u);
    finishLook();
    probe->detect();
    EXPECT_EQ(queue->waiting(), 1u) << "a new look once the last one has ended";
}

TEST_F(BackgroundProbeTest, AnUnchangedResultIsNotReported) {
    probe->detect();
    finishLook();
    EXPECT_EQ(newResults, 0);
    real->present = {ConflictingTool::betterDisplay};
    probe->detect();
    finishLook();
    EXPECT_EQ(newResults, 1);
    probe->detect();
    probe->detect();
    finishLook();
    EXPECT_EQ(newResults, 1);
}

TEST_F(BackgroundProbeTest, AResultArrivingAfterTheProbeIsGoneIsDropped) {
    probe->detect();
    probe.reset();
    EXPECT_NO_THROW(finishLook());
    EXPECT_EQ(newResults, 0);
}

TEST_F(BackgroundProbeTest, TakingOverRunsAtOnceAndThenLooksAgain) {
    real->present = {ConflictingTool::edidOverrideService};
    probe->detect();
    finishLook();
    probe->detect(); // consumes the fresh result
    probe->takeOver(ConflictingTool::edidOverrideService);
    EXPECT_EQ(real->takeOvers, std::vector<ConflictingTool>{ConflictingTool::edidOverrideService});
    finishLook();
    EXPECT_EQ(newResults, 2);
    EXPECT_EQ(probe->detect(), ConflictSet{});
    real->failTakeOver = std::make_exception_ptr(std::runtime_error("refused"));
    EXPECT_THROW(probe->takeOver(ConflictingTool::betterDisplay), std::runtime_error);
}

TEST_F(BackgroundProbeTest, ANewResultReachesTheControllerWhichTellsTheShell) {
    auto store = std::make_shared<TestDoubles::MemorySettingsStore>();
    real->present = {ConflictingTool::betterDisplay};
    const auto controller =
        HalvoraCore::SplitController::create(std::make_shared<TestDoubles::ScriptedDisplaySystem>(), clock,
                                             store, probe);
    probe->reportTo(controller);
    int changes = 0;
    controller->onChange = [&] { ++changes; };
    EXPECT_TRUE(controller->conflicts().empty()) << "created without waiting for the look";
    finishLook();
    EXPECT_EQ(controller->conflicts(), ConflictSet{ConflictingTool::betterDisplay});
    EXPECT_EQ(changes, 1);
}

TEST(ThreadBackgroundQueue, WorkRunsOnAnotherThreadInOrder) {
    HalvoraPlatform::ThreadBackgroundQueue queue;
    std::vector<int> order;
    std::promise<std::thread::id> ran;
    queue.async([&] { order.push_back(1); });
    queue.async([&] {
        order.push_back(2);
        ran.set_value(std::this_thread::get_id());
    });
    auto future = ran.get_future();
    ASSERT_EQ(future.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_NE(future.get(), std::this_thread::get_id());
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(ThreadBackgroundQueue, GoingAwayWaitsForTheWorkUnderWayAndDropsTheRest) {
    std::atomic<int> finished = 0;
    std::promise<void> started;
    {
        HalvoraPlatform::ThreadBackgroundQueue queue;
        queue.async([&] {
            started.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            ++finished;
        });
        queue.async([&] { finished += 10; });
        started.get_future().wait();
    }
    EXPECT_EQ(finished.load(), 1);
}
