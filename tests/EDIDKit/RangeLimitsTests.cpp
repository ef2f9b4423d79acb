#include <EDIDKit/RangeLimits.hpp>

#include <gtest/gtest.h>

using namespace EDIDKit;

namespace {

const RangeLimits limits{{48, 60}, {30, 90}, 30000};

/// A 1920-wide timing whose refresh rate is `hz`, with a modest line rate.
Timing timingAt(double hz) {
    Timing t{0, 1000, 100, 10, 10, 1000, 100, 3, 5};
    t.pixelClock10kHz = static_cast<int>(hz * 1100 * 1100 / 10000.0 + 0.5);
    return t;
}

} // namespace

TEST(RangeLimitsAccepts, RefreshJustOverTheMaximumPassesWithinOneHertz) {
    const Timing t = timingAt(60.9);
    ASSERT_NEAR(t.refreshRate(), 60.9, 0.01);
    EXPECT_TRUE(limits.accepts(t));
}

TEST(RangeLimitsAccepts, RefreshMoreThanOneHertzOverTheMaximumFails) {
    const Timing t = timingAt(61.1);
    ASSERT_NEAR(t.refreshRate(), 61.1, 0.01);
    EXPECT_FALSE(limits.accepts(t));
}

TEST(RangeLimitsAccepts, PixelClockAboveTheMaximumFails) {
    const RangeLimits tight{{0, 255}, {0, 255}, 13849};
    EXPECT_FALSE(tight.accepts(Timing::cvtReducedBlanking(1920, 1080, 60)));
    const RangeLimits exact{{0, 255}, {0, 255}, 13850};
    EXPECT_TRUE(exact.accepts(Timing::cvtReducedBlanking(1920, 1080, 60)));
}

TEST(RangeLimitsAccepts, LineRateMoreThanOneKilohertzOverTheMaximumFails) {
    const Timing t = Timing::cvtReducedBlanking(1920, 1080, 60); // 66.59 kHz
    EXPECT_TRUE((RangeLimits{{0, 255}, {0, 66}, 60000}.accepts(t)));
    EXPECT_FALSE((RangeLimits{{0, 255}, {0, 65}, 60000}.accepts(t)));
}

TEST(RangeLimitsAccepts, LowerBoundsAreNotChecked) {
    const RangeLimits high{{100, 240}, {200, 255}, 60000};
    EXPECT_TRUE(high.accepts(Timing::cvtReducedBlanking(1920, 1080, 60)));
}

TEST(RangeLimits, MaxHRateIsTheUpperBound) { EXPECT_EQ(limits.maxHRateKHz(), 90); }
