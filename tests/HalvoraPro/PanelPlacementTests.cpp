// Which screen the floating panels centre on, where, and which takes the keyboard.

#include <HalvoraPro/PanelPlacement.hpp>
#include <gtest/gtest.h>

using HalvoraPro::PanelPlacement;
using HalvoraPro::ScreenFrame;

namespace {

const ScreenFrame external{false, 0, 0, 3440, 1415};
const ScreenFrame builtIn{true, -1512, 0, 1512, 944};
const ScreenFrame secondExternal{false, 3440, 0, 2560, 1415};

} // namespace

TEST(PanelPlacement, ThePanelsCentreOnTheBuiltInScreenWhereverItIsListed) {
    EXPECT_EQ(PanelPlacement::screenFor({external, secondExternal, builtIn}, 0), 2u);
    EXPECT_EQ(PanelPlacement::screenFor({builtIn, external}, 1), 0u);
}

TEST(PanelPlacement, WithoutABuiltInScreenTheMainScreenIsUsed) {
    EXPECT_EQ(PanelPlacement::screenFor({external, secondExternal}, 1), 1u);
}

TEST(PanelPlacement, WithoutAMainScreenTheFirstIsUsedAndWithoutScreensNone) {
    EXPECT_EQ(PanelPlacement::screenFor({external, secondExternal}, std::nullopt), 0u);
    EXPECT_EQ(PanelPlacement::screenFor({external}, 5), 0u) << "a main screen that is not listed";
    EXPECT_EQ(PanelPlacement::screenFor({}, std::nullopt), std::nullopt);
}

TEST(PanelPlacement, ThePanelIsCentredOnTheVisibleFrameInWholePoints) {
    EXPECT_EQ(PanelPlacement::centredOrigin(400, 140, builtIn),
              (std::pair<double, double>{-956, 402}));
    EXPECT_EQ(PanelPlacement::centredOrigin(401, 121, external),
              (std::pair<double, double>{1520, 647}));
}

TEST(PanelPlacement, AResizedWindowKeepsItsTopEdgeAndDoesNotMoveSideways) {
    EXPECT_EQ(PanelPlacement::originKeepingTop(100, 500, 200, 260),
              (std::pair<double, double>{100, 440}));
    EXPECT_EQ(PanelPlacement::originKeepingTop(100, 500, 200, 150),
              (std::pair<double, double>{100, 550}));
    EXPECT_EQ(PanelPlacement::originKeepingTop(-40, 20, 80, 80),
              (std::pair<double, double>{-40, 20}));
}
