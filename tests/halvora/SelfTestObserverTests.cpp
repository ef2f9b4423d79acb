#include "SelfTestObserver.hpp"

#include <ScriptedScreen.hpp>
#include <TemporaryFolder.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Halvora;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

struct ObserverFixture : ::testing::Test {
    TestSupport::TemporaryFolder folder;
    TestDoubles::ScriptedScreen screen;
    SelfTestObserver observer{screen, folder.path()};

    void show(HalvoraPro::PanelKind panel) { screen.fadeInPanel(panel, {}); }
};

TEST_F(ObserverFixture, CapturesAWindowWhenItAppearsAndAgainOnlyWhenItsContentChanges) {
    show(HalvoraPro::PanelKind::confirmation);
    EXPECT_THAT(observer.check({{ShownWindow::confirmationPanel, "Keep these settings? 15 s"}}),
                IsEmpty());
    EXPECT_THAT(observer.check({{ShownWindow::confirmationPanel, "Keep these settings? 15 s"}}),
                IsEmpty());
    EXPECT_THAT(observer.check({{ShownWindow::confirmationPanel,
                                 "Keep these settings for the other monitor?"}}),
                IsEmpty());
    EXPECT_THAT(screen.captures,
                ElementsAre("001-confirmation-panel.png", "002-confirmation-panel.png"));
    EXPECT_EQ(TestSupport::readFile(folder / "001-confirmation-panel.png"), "confirmation-panel");
}

TEST_F(ObserverFixture, AWindowThatComesBackIsCapturedAgain) {
    screen.showIdentification({}, {});
    observer.check({{ShownWindow::identificationWindow, "step 1"}});
    screen.closeIdentification();
    observer.check({});
    screen.showIdentification({}, {});
    observer.check({{ShownWindow::identificationWindow, "step 1"}});
    EXPECT_THAT(screen.captures,
                ElementsAre("001-identification-window.png", "002-identification-window.png"));
}

TEST_F(ObserverFixture, AlertsArePicturedButNotLookedForOnTheScreen) {
    EXPECT_THAT(observer.check({{ShownWindow::alert, "1\nAnother tool writes EDIDs"}}), IsEmpty());
    EXPECT_THAT(screen.captures, ElementsAre("001-alert.png"));
}

TEST_F(ObserverFixture, APanelMissingFromTheScreenAndOneLeftOnItAreBothProblems) {
    show(HalvoraPro::PanelKind::switchPrompt);
    const auto problems = observer.check({{ShownWindow::confirmationPanel, "Keep?"}});
    EXPECT_THAT(
        problems,
        ElementsAre("the confirmation panel is shown by the application but not on the screen",
                    "the switch prompt is on the screen but the application does not show it"));
}

TEST_F(ObserverFixture, AWindowThatCannotBeCapturedIsAProblem) {
    screen.capturesFail = true;
    show(HalvoraPro::PanelKind::confirmation);
    const auto problems = observer.check({{ShownWindow::confirmationPanel, "Keep?"}});
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_THAT(problems.front(),
                ::testing::StartsWith("could not capture the confirmation panel to "));
}

TEST(SelfTestObserver, WithoutAFolderNothingIsCapturedButTheScreenIsStillChecked) {
    TestDoubles::ScriptedScreen screen;
    SelfTestObserver observer(screen, std::nullopt);
    EXPECT_THAT(observer.check({{ShownWindow::switchPrompt, "Switch?"}}),
                ElementsAre("the switch prompt is shown by the application but not on the screen"));
    EXPECT_THAT(screen.captures, IsEmpty());
}

} // namespace
