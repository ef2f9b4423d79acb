#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

using Kind = NativeResolutionGuess::Kind;

namespace {

/// An EDID whose preferred timing is `native`, with `extra` more detailed timings.
EDID withNative(int width, int height, int extra) {
    EDIDBuilder b;
    b.baseTiming(cvt(width, height));
    for (int i = 0; i < extra; ++i) b.baseTiming(cvt(640 + 8 * i, 480));
    return b.edid();
}

} // namespace

TEST(NativeResolutionGuess, HalfOfAnUltrawideIsSplit) {
    EXPECT_EQ(withNative(1720, 1440, 0).nativeResolutionGuess(),
              (NativeResolutionGuess{Kind::split, {{3440, 1440}}}));
}

TEST(NativeResolutionGuess, SixteenByNineWithOneTimingIsUncertain) {
    EXPECT_EQ(withNative(2560, 1440, 0).nativeResolutionGuess(),
              (NativeResolutionGuess{Kind::uncertain, {{2560, 1440}, {5120, 1440}}}));
}

TEST(NativeResolutionGuess, SixteenByNineWithTwoTimingsIsFull) {
    EXPECT_EQ(withNative(2560, 1440, 1).nativeResolutionGuess(),
              (NativeResolutionGuess{Kind::full, {{2560, 1440}}}));
}

TEST(NativeResolutionGuess, FullHDIsUncertainOnlyWithASingleTiming) {
    EXPECT_EQ(withNative(1920, 1080, 0).nativeResolutionGuess(),
              (NativeResolutionGuess{Kind::uncertain, {{1920, 1080}, {3840, 1080}}}));
    EXPECT_EQ(withNative(1920, 1080, 2).nativeResolutionGuess(),
              (NativeResolutionGuess{Kind::full, {{1920, 1080}}}));
}

TEST(NativeResolutionGuess, UnusualSizeWithNoPanelIsFull) {
    EXPECT_EQ(withNative(1000, 777, 0).nativeResolutionGuess(),
              (NativeResolutionGuess{Kind::full, {{1000, 777}}}));
}

TEST(NativeResolutionGuess, AbsentWithoutAnyDecodableTiming) {
    EXPECT_EQ(EDIDBuilder().productName("Nothing").edid().nativeResolutionGuess(), std::nullopt);
}

TEST(NativeResolutionGuess, RatioWithinTwoPercentOfStandardCountsAsStandard) {
    EXPECT_TRUE(hasStandardAspectRatio({1900, 1080})); // 1.04% off 16:9
    EXPECT_TRUE(hasStandardAspectRatio({3440, 1440})); // 21:9 within 2%
    EXPECT_FALSE(hasStandardAspectRatio({1720, 1440}));
    EXPECT_FALSE(hasStandardAspectRatio({1000, 777}));
}

TEST(NativeResolutionGuess, AWidePanelIsFull) {
    EXPECT_EQ(ultrawide().nativeResolutionGuess(), (NativeResolutionGuess{Kind::full, {{3440, 1440}}}));
}

TEST(NativeResolutionGuess, DisplayIDNativeIsTheOneGuessedAbout) {
    const EDID edid = EDIDBuilder()
                          .baseTiming(cvt(1280, 720))
                          .baseTiming(cvt(640, 480))
                          .displayIDExtension({{cvt(1720, 1440), true, {}}})
                          .edid();
    EXPECT_EQ(edid.nativeResolutionGuess(), (NativeResolutionGuess{Kind::split, {{3440, 1440}}}));
}

TEST(NativeResolutionGuess, KindsHaveTheirNames) {
    EXPECT_EQ(toString(Kind::full), "full");
    EXPECT_EQ(toString(Kind::split), "split");
    EXPECT_EQ(toString(Kind::uncertain), "uncertain");
}
