#include <HalvoraPlatform/DisplayModeError.hpp>
#include <HalvoraPlatform/IOAVError.hpp>
#include <HalvoraPlatform/ModeSpec.hpp>

#include <limits>

#include <gtest/gtest.h>

using namespace HalvoraPlatform;

TEST(IOAVError, CodeIsShownAsItsThirtyTwoBitPatternInUpperCaseHex) {
    EXPECT_EQ(IOAVError(IOAVError::applyCall, -536870212).description(),
              "SetVirtualEDIDMode(apply) failed: 0xE00002BC");
    EXPECT_EQ(IOAVError(IOAVError::restoreCall, 0x2C7).description(), "SetVirtualEDIDMode(restore) failed: 0x2C7");
}

TEST(DisplayModeError, TextsSayWhatFailed) {
    EXPECT_STREQ(DisplayModeError::noSuchMode({1720, 1440, 60}).what(),
                 "the display has no 1720x1440@60 mode \u2014 apply an EDID that contains it first");
    EXPECT_STREQ(DisplayModeError::switchFailed(-5).what(), "switching mode failed: -5");
}

TEST(ModeSpec, DescriptionTruncatesTheRefreshRate) {
    EXPECT_EQ((ModeSpec{1720, 1440, 59.94}).description(), "1720x1440@59");
}

TEST(ModeSpec, ParsesSizesWithAndWithoutRefresh) {
    EXPECT_EQ(ModeSpec::parse("1720X1440"), (ModeSpec{1720, 1440, 60.0}));
    EXPECT_EQ(ModeSpec::parse("1920x1080@59.94"), (ModeSpec{1920, 1080, 59.94}));
}

TEST(ModeSpec, AnEmptyRefreshPieceIsDroppedAndMeansSixtyHertz) {
    EXPECT_EQ(ModeSpec::parse("1920x1080@"), (ModeSpec{1920, 1080, 60.0}));
}

TEST(ModeSpec, RatesThatAreNotFinitePositiveNumbersAreRefused) {
    for (const char* text : {"1920x1080@nan", "1920x1080@NaN", "1920x1080@inf", "1920x1080@infinity",
                             "1920x1080@-inf", "1920x1080@-60", "1920x1080@0", "1920x1080@1e300", "1920x1080@1001"})
        EXPECT_EQ(ModeSpec::parse(text), std::nullopt) << text;
    EXPECT_EQ(ModeSpec::parse("1920x1080@1000"), (ModeSpec{1920, 1080, 1000.0}));
}

TEST(ModeSpec, SizesThatAreNotPositiveAreRefused) {
    for (const char* text : {"-1920x1080", "1920x-1080", "0x1080", "1920x0", "-0x-0@60"})
        EXPECT_EQ(ModeSpec::parse(text), std::nullopt) << text;
}

TEST(ModeSpec, TheDescriptionOfAHandBuiltSpecWithAnUnrepresentableRateIsStillText) {
    EXPECT_EQ((ModeSpec{1920, 1080, std::numeric_limits<double>::quiet_NaN()}).description(), "1920x1080@nan");
    EXPECT_EQ((ModeSpec{1920, 1080, std::numeric_limits<double>::infinity()}).description(), "1920x1080@inf");
    EXPECT_EQ((ModeSpec{1920, 1080, 1e300}).description(), "1920x1080@inf");
}

TEST(ModeSpec, TextWithoutBothSizesIsNoSpec) {
    EXPECT_EQ(ModeSpec::parse("1920@60"), std::nullopt);
    EXPECT_EQ(ModeSpec::parse("1920x1080@60@1"), std::nullopt);
    EXPECT_EQ(ModeSpec::parse("1920x1080@fast"), std::nullopt);
    EXPECT_EQ(ModeSpec::parse(""), std::nullopt);
}

TEST(ModeSpec, ASizeOfThreePiecesIsRejected) {
    EXPECT_EQ(ModeSpec::parse("1920xabcx1080"), std::nullopt);
    EXPECT_EQ(ModeSpec::parse("1920x1080x1"), std::nullopt);
}
