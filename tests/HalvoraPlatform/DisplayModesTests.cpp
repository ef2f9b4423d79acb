// Display modes over scripted CoreGraphics displays.

#include "ScriptedCoreGraphics.hpp"

#include <HalvoraPlatform/DisplayModeError.hpp>
#include <HalvoraPlatform/DisplayModes.hpp>
#include <gtest/gtest.h>

using namespace HalvoraPlatform;
using TestDoubles::ScriptedCoreGraphics;

namespace {

class ModesTest : public ::testing::Test {
protected:
    std::shared_ptr<ScriptedCoreGraphics> cg = std::make_shared<ScriptedCoreGraphics>();
    DisplayModes modes{cg};
};

} // namespace

TEST_F(ModesTest, OnlyDisplaysThatAreNotBuiltInAreExternal) {
    cg->add(1, 0x610, 0xA050, 0).builtin = true;
    cg->add(2, 0x10AC, 41229, 7);
    cg->add(3, 0x4C2D, 3953, 9);
    EXPECT_EQ(modes.externalDisplays(), (std::vector<DisplayModes::Display>{2, 3}));
    EXPECT_EQ(cg->lastMaximum, 16u);
    EXPECT_EQ(modes.externalDisplay(), 2u);
}

TEST_F(ModesTest, AMachineWithOnlyItsBuiltInPanelHasNoExternalDisplay) {
    cg->add(1, 0x610, 0xA050, 0).builtin = true;
    EXPECT_TRUE(modes.externalDisplays().empty());
    EXPECT_EQ(modes.externalDisplay(), std::nullopt);
}

TEST_F(ModesTest, TheListKeepsOnlyModesUsableForTheDesktopInOrder) {
    auto& d = cg->add(2, 1, 1, 1);
    d.modes = {ScriptedCoreGraphics::mode(3440, 1440, 60),
               ScriptedCoreGraphics::mode(640, 480, 60, false, false),
               ScriptedCoreGraphics::mode(1720, 1440, 60, true)};
    const auto listed = modes.list(2);
    ASSERT_EQ(listed.size(), 2u);
    EXPECT_EQ(listed[0].width, 3440u);
    EXPECT_EQ(listed[1].pixelWidth, 3440u);
}

TEST_F(ModesTest, ARequestForSixtyHertzMatchesWithinHalfAHertz) {
    auto& d = cg->add(2, 1, 1, 1);
    d.modes = {ScriptedCoreGraphics::mode(1720, 1440, 60.5),
               ScriptedCoreGraphics::mode(1720, 1440, 59.94)};
    modes.set({1720, 1440, 60}, 2);
    EXPECT_EQ(cg->calls, (std::vector<std::string>{"configure 2 1720x1440@59.940000"}));
    d.modes = {ScriptedCoreGraphics::mode(1720, 1440, 60.4)};
    modes.set({1720, 1440, 60}, 2);
    EXPECT_EQ(cg->calls.back(), "configure 2 1720x1440@60.400000");
    d.modes = {ScriptedCoreGraphics::mode(1720, 1440, 60.5)};
    EXPECT_THROW(modes.set({1720, 1440, 60}, 2), DisplayModeError);
}

TEST_F(ModesTest, AHiDPIModeOfTheSamePointSizeIsNeverChosen) {
    auto& d = cg->add(2, 1, 1, 1);
    d.modes = {ScriptedCoreGraphics::mode(1720, 1440, 60, true)};
    try {
        modes.set({1720, 1440, 60}, 2);
        FAIL();
    } catch (const DisplayModeError& e) {
        EXPECT_EQ(e, DisplayModeError::noSuchMode({1720, 1440, 60}));
        EXPECT_EQ(
            e.description(),
            "the display has no 1720x1440@60 mode \u2014 apply an EDID that contains it first");
    }
    EXPECT_TRUE(cg->calls.empty());
}

TEST_F(ModesTest, TheFirstMatchingModeIsConfiguredAndAFailedCompletionIsReported) {
    auto& d = cg->add(2, 1, 1, 1);
    d.modes = {ScriptedCoreGraphics::mode(3440, 1440, 60),
               ScriptedCoreGraphics::mode(3440, 1440, 59.9)};
    modes.set({3440, 1440, 60}, 2);
    EXPECT_EQ(cg->calls, (std::vector<std::string>{"configure 2 3440x1440@60.000000"}));
    d.configureCode = 1001;
    try {
        modes.set({3440, 1440, 60}, 2);
        FAIL();
    } catch (const DisplayModeError& e) {
        EXPECT_EQ(e, DisplayModeError::switchFailed(1001));
    }
}

TEST_F(ModesTest, ADescriptionRoundsTheRateAndMarksScaledModes) {
    EXPECT_EQ(DisplayModes::describe(ScriptedCoreGraphics::mode(1720, 1440, 59.94)),
              "1720x1440@60");
    EXPECT_EQ(DisplayModes::describe(ScriptedCoreGraphics::mode(1280, 720, 60, true)),
              "1280x720@60 (HiDPI)");
}

TEST_F(ModesTest, TheCurrentModeIsCoreGraphicsOwn) {
    auto& d = cg->add(2, 1, 1, 1);
    EXPECT_EQ(modes.current(2), std::nullopt);
    d.modes = {ScriptedCoreGraphics::mode(3440, 1440, 60)};
    d.current = 0;
    EXPECT_EQ(modes.current(2)->width, 3440u);
}
