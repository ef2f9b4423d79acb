// The barrier at every entry from the system into the program: nothing
// escapes it, the application's handler hears of what was caught, and the
// program goes on.

#include <HalvoraPlatform/EntryBarrier.hpp>
#include <gtest/gtest.h>
#include <stdexcept>

using HalvoraPlatform::EntryBarrier;

namespace {

class EntryBarrierTest : public ::testing::Test {
protected:
    void TearDown() override { EntryBarrier::setHandler({}); }
};

} // namespace

TEST_F(EntryBarrierTest, ABodyThatReturnsRunsOnceAndTheHandlerHearsNothing) {
    int runs = 0, heard = 0;
    EntryBarrier::setHandler([&](std::string_view) { ++heard; });
    EntryBarrier::guarded("a timer", [&] { ++runs; });
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(heard, 0);
}

TEST_F(EntryBarrierTest, AnExceptionStopsAtTheBarrierAndTheHandlerGetsItWithTheEntrysName) {
    std::vector<std::string> heard;
    EntryBarrier::setHandler([&](std::string_view entry) {
        // Inside the catch: the exception is still there to be described.
        heard.push_back(EntryBarrier::describeCurrentException(entry));
    });
    EXPECT_NO_THROW(
        EntryBarrier::guarded("a button or menu item", [] { throw std::runtime_error("boom"); }));
    EXPECT_EQ(heard, (std::vector<std::string>{"Halvora Pro: a button or menu item failed: boom"}));
}

TEST_F(EntryBarrierTest, SomethingThatIsNoStdExceptionIsCaughtAndDescribedToo) {
    std::vector<std::string> heard;
    EntryBarrier::setHandler([&](std::string_view entry) {
        heard.push_back(EntryBarrier::describeCurrentException(entry));
    });
    EXPECT_NO_THROW(EntryBarrier::guarded("a timer", [] { throw 42; }));
    EXPECT_EQ(heard,
              (std::vector<std::string>{
                  "Halvora Pro: a timer failed: an exception that is not a std::exception"}));
}

TEST_F(EntryBarrierTest, AHandlerThatThrowsIsStoppedTooAndTheLineGoesToStandardError) {
    EntryBarrier::setHandler([](std::string_view) { throw std::logic_error("the alert failed"); });
    ::testing::internal::CaptureStderr();
    EXPECT_NO_THROW(EntryBarrier::guarded("a timer", [] { throw std::runtime_error("boom"); }));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Halvora Pro: a timer failed, and so did reporting it\n");
}

TEST_F(EntryBarrierTest, WithoutAHandlerTheLineGoesToStandardError) {
    ::testing::internal::CaptureStderr();
    EntryBarrier::guarded("work on the main queue", [] { throw std::runtime_error("boom"); });
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Halvora Pro: work on the main queue failed: boom\n");
}

TEST_F(EntryBarrierTest, TheProgramGoesOnAfterACaughtException) {
    int later = 0;
    EntryBarrier::setHandler([](std::string_view) {});
    EntryBarrier::guarded("a timer", [] { throw std::runtime_error("boom"); });
    EntryBarrier::guarded("a timer", [&] { ++later; });
    EXPECT_EQ(later, 1);
}

TEST(EntryBarrierDescription, OutsideAHandlerThereIsNothingToRethrowAndTheProcessGoesOn) {
    EXPECT_EQ(EntryBarrier::describeCurrentException("a timer"), "Halvora Pro: a timer failed");
}
