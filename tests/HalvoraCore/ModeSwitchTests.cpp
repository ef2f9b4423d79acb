// Switching a monitor into its full or split resolution.

#include <HalvoraCore/ModeSwitch.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <gtest/gtest.h>
#include <optional>
#include <utility>
#include <vector>

using namespace HalvoraCore;

namespace {

const DisplayID dcp1{"dcp-1"};

/// The controller as the switch sees it: the states and modes it is told,
/// and the modes it was asked to set and remember.
class FakeSwitchHost final : public ModeSwitch::Host {
public:
    std::vector<DisplayState> states{{dcp1, "Halvora UW34", EDIDKit::Resolution{3440, 1440},
                                      EDIDKit::Resolution{1720, 1440}, true, ModeChoice::full,
                                      std::nullopt}};
    std::vector<DisplayMode> offered{{3440, 1440, 60}, {3440, 1440, 100}, {1720, 1440, 60}};
    std::optional<SplitError> setFailure;

    std::vector<std::pair<DisplayMode, DisplayID>> set, remembered;

    std::vector<DisplayState> displayStates() override { return states; }
    std::vector<DisplayMode> modes(const DisplayID&) override { return offered; }
    void setMode(const DisplayMode& mode, const DisplayID& display) override {
        if (setFailure) throw *setFailure;
        set.emplace_back(mode, display);
    }
    void rememberMode(const DisplayMode& mode, const DisplayID& display) override {
        remembered.emplace_back(mode, display);
    }
};

SplitError failureOf(ModeSwitch& modeSwitch, ModeChoice choice, const DisplayID& display) {
    try {
        modeSwitch.switchTo(choice, display);
    } catch (const SplitError& error) {
        return error;
    }
    ADD_FAILURE() << "no error";
    return SplitError::unreadableEDID();
}

} // namespace

TEST(ModeSwitch, TheSplitIsSetAtTheHighestRefreshAndTheFirstAmongEqualsAndRemembered) {
    FakeSwitchHost host;
    host.offered = {{3440, 1440, 60},
                    {1720, 1440, 60},
                    {1720, 1440, 100},
                    {1720, 1440, 100},
                    {1720, 1441, 144}};
    ModeSwitch(host).switchTo(ModeChoice::split, dcp1);
    const std::vector<std::pair<DisplayMode, DisplayID>> expected{{{1720, 1440, 100}, dcp1}};
    EXPECT_EQ(host.set, expected);
    EXPECT_EQ(host.remembered, expected);
}

TEST(ModeSwitch, FullIsTheNativeResolution) {
    FakeSwitchHost host;
    ModeSwitch(host).switchTo(ModeChoice::full, dcp1);
    const std::vector<std::pair<DisplayMode, DisplayID>> expected{{{3440, 1440, 100}, dcp1}};
    EXPECT_EQ(host.set, expected);
}

TEST(ModeSwitch, AGoneDisplayIsNotFound) {
    FakeSwitchHost host;
    ModeSwitch modeSwitch(host);
    EXPECT_EQ(failureOf(modeSwitch, ModeChoice::full, DisplayID("dcp-9")),
              SplitError::displayNotFound());
    EXPECT_TRUE(host.set.empty());
}

TEST(ModeSwitch, AnUnidentifiedMonitorCannotSwitch) {
    FakeSwitchHost host;
    host.states[0].native.reset();
    host.states[0].split.reset();
    ModeSwitch modeSwitch(host);
    EXPECT_EQ(failureOf(modeSwitch, ModeChoice::split, dcp1), SplitError::notIdentified());
    EXPECT_TRUE(host.set.empty());
}

TEST(ModeSwitch, ADisplayWithoutAModeOfTheWantedSizeCannotSwitch) {
    FakeSwitchHost host;
    host.offered = {{3440, 1440, 60}};
    ModeSwitch modeSwitch(host);
    EXPECT_EQ(failureOf(modeSwitch, ModeChoice::split, dcp1),
              SplitError::modeUnavailable({1720, 1440}));
    EXPECT_TRUE(host.remembered.empty());
}

TEST(ModeSwitch, AModeThatCouldNotBeSetIsNotRemembered) {
    FakeSwitchHost host;
    host.setFailure =
        SplitError::hardware(DisplayOperation::setMode, "switching mode failed: 1001");
    ModeSwitch modeSwitch(host);
    EXPECT_EQ(failureOf(modeSwitch, ModeChoice::split, dcp1),
              SplitError::hardware(DisplayOperation::setMode, "switching mode failed: 1001"));
    EXPECT_TRUE(host.remembered.empty());
}
