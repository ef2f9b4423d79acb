#include <EDIDKit/Resolution.hpp>
#include <EDIDKit/ResolutionJSON.hpp>
#include <EDIDKit/SplitLayout.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <unordered_set>

using namespace EDIDKit;

using List = std::vector<Resolution>;

TEST(Resolution, DescriptionUsesTheMultiplicationSign) {
    EXPECT_EQ((Resolution{3440, 1440}).description(), "3440\u00D71440");
}

TEST(Resolution, EncodesAsWidthAndHeightAndDecodesBackEqual) {
    const nlohmann::json j = Resolution{3440, 1440};
    EXPECT_EQ(j, (nlohmann::json{{"width", 3440}, {"height", 1440}}));
    EXPECT_EQ(j.get<Resolution>(), (Resolution{3440, 1440}));
}

TEST(Resolution, DecodingFailsWithoutBothIntegerKeys) {
    EXPECT_THROW((nlohmann::json{{"width", 3440}}.get<Resolution>()), nlohmann::json::exception);
    EXPECT_THROW((nlohmann::json{{"width", "3440"}, {"height", 1440}}.get<Resolution>()),
                 nlohmann::json::exception);
}

TEST(Resolution, HashesByBothFields) {
    const std::unordered_set<Resolution> set{{3440, 1440}, {1440, 3440}, {3440, 1440}};
    EXPECT_EQ(set.size(), 2u);
}

TEST(CommonNatives, HalfOfAnUltrawideSplitsFromIt) {
    EXPECT_EQ((Resolution{1720, 1440}).commonNativesSplittingInto(), (List{{3440, 1440}}));
    EXPECT_EQ((Resolution{2560, 1440}).commonNativesSplittingInto(), (List{{5120, 1440}}));
    EXPECT_EQ((Resolution{1920, 2160}).commonNativesSplittingInto(), (List{{3840, 2160}}));
}

TEST(CommonNatives, QuarterAndHalfBothCountInTableOrder) {
    EXPECT_EQ((Resolution{1280, 1440}).commonNativesSplittingInto(),
              (List{{5120, 1440}, {2560, 1440}}));
}

TEST(CommonNatives, ThirdsCountToo) {
    EXPECT_EQ((Resolution{1280, 1080}).commonNativesSplittingInto(),
              (List{{2560, 1080}, {3840, 1080}})); // a half and a third
    // 3440 / 3 = 1146, rounded down to a multiple of 8: 1144.
    EXPECT_EQ((Resolution{1144, 1440}).commonNativesSplittingInto(), (List{{3440, 1440}}));
}

TEST(CommonNatives, APanelIsNotPartOfItself) {
    EXPECT_EQ((Resolution{3440, 1440}).commonNativesSplittingInto(), List{});
    EXPECT_EQ((Resolution{1000, 777}).commonNativesSplittingInto(), List{});
}

TEST(SplitLayout, HalvesOfCommonPanels) {
    EXPECT_EQ(SplitLayout::halves.parts, 2);
    EXPECT_EQ(SplitLayout::halves.splitResolution({3440, 1440}), (Resolution{1720, 1440}));
    EXPECT_EQ(SplitLayout::halves.splitResolution({3840, 1080}), (Resolution{1920, 1080}));
}

TEST(SplitLayout, OddHalfIsRoundedDownToAMultipleOfEight) {
    EXPECT_EQ(SplitLayout::halves.splitResolution({2558, 1440}), (Resolution{1272, 1440}));
}

TEST(SplitLayout, ZeroPartsIsAProgrammingError) {
    EXPECT_THROW(SplitLayout{0}.splitResolution({3440, 1440}), std::logic_error);
}
