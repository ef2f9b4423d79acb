// The shell's focus rules: what each show and update of a window does to the
// user's focus, which window holds the keyboard, and when alerts wait.

#include <HalvoraPro/Focus.hpp>
#include <gtest/gtest.h>

using HalvoraPro::Focus;
using HalvoraPro::PanelButton;
using HalvoraPro::PanelKind;
using HalvoraPro::Presentation;
using HalvoraPro::ShellWindow;

namespace {

constexpr Presentation broughtToTheUser{
    .activatesApplication = true, .becomesKey = true, .centres = true, .ordersFront = true};
constexpr Presentation inPlace = Presentation::inPlace();

} // namespace

TEST(Focus, TheIdentificationWindowsFirstShowActivatesTakesTheKeyboardAndCentres) {
    Focus focus;
    EXPECT_EQ(focus.identificationShown(), broughtToTheUser);
    EXPECT_EQ(focus.keyWindow(), ShellWindow::identification);
}

TEST(Focus, EveryLaterShowOfTheIdentificationWindowChangesItInPlace) {
    Focus focus;
    (void)focus.identificationShown();
    EXPECT_EQ(focus.identificationShown(), inPlace);
    EXPECT_EQ(focus.identificationShown(), inPlace);
    EXPECT_FALSE(inPlace.activatesApplication || inPlace.becomesKey || inPlace.centres ||
                 inPlace.ordersFront);
}

TEST(Focus, AWindowOpenedAgainAfterClosingIsBroughtToTheUserAgain) {
    Focus focus;
    (void)focus.identificationShown();
    focus.identificationClosed();
    EXPECT_EQ(focus.keyWindow(), std::nullopt);
    EXPECT_EQ(focus.identificationShown(), broughtToTheUser);
}

TEST(Focus, TheConfirmationPanelTakesTheKeyboardWithoutActivatingAndIsCentredWhenItAppears) {
    Focus focus;
    EXPECT_EQ(focus.panelShown(PanelKind::confirmation),
              (Presentation{.activatesApplication = false,
                            .becomesKey = true,
                            .centres = true,
                            .ordersFront = true}));
    EXPECT_EQ(focus.keyWindow(), ShellWindow::confirmationPanel);
}

TEST(Focus, TheSwitchPromptNeverActivatesNorTakesTheKeyboard) {
    Focus focus;
    (void)focus.identificationShown();
    EXPECT_EQ(focus.panelShown(PanelKind::switchPrompt),
              (Presentation{.activatesApplication = false,
                            .becomesKey = false,
                            .centres = true,
                            .ordersFront = true}));
    EXPECT_EQ(focus.keyWindow(), ShellWindow::identification)
        << "whoever had the keyboard keeps it";
    EXPECT_EQ(focus.panelHidden(PanelKind::switchPrompt), std::nullopt);
    EXPECT_EQ(focus.keyWindow(), ShellWindow::identification);
}

TEST(Focus, APanelsUpdatesHappenInPlace) {
    EXPECT_EQ(Focus::panelUpdated(PanelKind::confirmation), inPlace);
    EXPECT_EQ(Focus::panelUpdated(PanelKind::switchPrompt), inPlace);
}

TEST(Focus, TheIdentificationWindowChangingUnderTheConfirmationPanelLeavesThePanelTheKeyboard) {
    Focus focus;
    (void)focus.identificationShown();
    (void)focus.panelShown(PanelKind::confirmation);
    EXPECT_EQ(focus.identificationShown(), inPlace);
    EXPECT_EQ(focus.keyWindow(), ShellWindow::confirmationPanel);
}

TEST(Focus, WhenTheConfirmationPanelGoesTheKeyboardReturnsToTheIdentificationWindowThatHadIt) {
    Focus focus;
    (void)focus.identificationShown();
    (void)focus.panelShown(PanelKind::confirmation);
    EXPECT_EQ(focus.panelHidden(PanelKind::confirmation), ShellWindow::identification);
    EXPECT_EQ(focus.keyWindow(), ShellWindow::identification);
    EXPECT_EQ(Focus::keyReturned(), (Presentation{.activatesApplication = false,
                                                  .becomesKey = true,
                                                  .centres = false,
                                                  .ordersFront = false}));
}

TEST(Focus, WhenTheConfirmationPanelGoesWithNoWindowBeforeItNothingTakesTheKeyboard) {
    Focus focus;
    (void)focus.panelShown(PanelKind::confirmation);
    EXPECT_EQ(focus.panelHidden(PanelKind::confirmation), std::nullopt);
    EXPECT_EQ(focus.keyWindow(), std::nullopt);
}

TEST(Focus, AWindowClosedWhileThePanelWasUpDoesNotGetTheKeyboardBack) {
    Focus focus;
    (void)focus.identificationShown();
    (void)focus.panelShown(PanelKind::confirmation);
    focus.identificationClosed();
    EXPECT_EQ(focus.panelHidden(PanelKind::confirmation), std::nullopt);
}

TEST(Focus, AWindowFirstShownUnderThePanelAppearsWithoutTheKeyboardAndGetsItWhenThePanelGoes) {
    Focus focus;
    (void)focus.panelShown(PanelKind::confirmation);
    EXPECT_EQ(focus.identificationShown(), (Presentation{.activatesApplication = true,
                                                         .becomesKey = false,
                                                         .centres = true,
                                                         .ordersFront = true}));
    EXPECT_EQ(focus.keyWindow(), ShellWindow::confirmationPanel);
    EXPECT_EQ(focus.panelHidden(PanelKind::confirmation), ShellWindow::identification);
}

TEST(Focus, ThePanelShownAgainWhileShownDoesNotForgetWhoHadTheKeyboard) {
    Focus focus;
    (void)focus.identificationShown();
    (void)focus.panelShown(PanelKind::confirmation);
    (void)focus.panelShown(PanelKind::confirmation);
    EXPECT_EQ(focus.panelHidden(PanelKind::confirmation), ShellWindow::identification);
}

TEST(Focus, AskingForTheOpenWindowAgainBringsItForwardWhereItStands) {
    Focus focus;
    (void)focus.identificationShown();
    (void)focus.panelShown(PanelKind::switchPrompt);
    EXPECT_EQ(focus.identificationRequested(), (Presentation{.activatesApplication = true,
                                                             .becomesKey = true,
                                                             .centres = false,
                                                             .ordersFront = true}));
}

TEST(Focus, AskingForTheWindowWhileTheConfirmationPanelHasTheKeyboardLeavesItThere) {
    Focus focus;
    (void)focus.identificationShown();
    (void)focus.panelShown(PanelKind::confirmation);
    EXPECT_EQ(focus.identificationRequested(), inPlace);
    EXPECT_EQ(focus.keyWindow(), ShellWindow::confirmationPanel);
}

TEST(Focus, AlertsWaitExactlyWhileTheConfirmationPanelIsShown) {
    Focus focus;
    EXPECT_FALSE(focus.holdsAlerts());
    (void)focus.identificationShown();
    (void)focus.panelShown(PanelKind::switchPrompt);
    EXPECT_FALSE(focus.holdsAlerts());
    (void)focus.panelShown(PanelKind::confirmation);
    EXPECT_TRUE(focus.holdsAlerts());
    (void)focus.identificationShown();
    EXPECT_TRUE(focus.holdsAlerts());
    (void)focus.panelHidden(PanelKind::confirmation);
    EXPECT_FALSE(focus.holdsAlerts());
}

TEST(Focus, OnlyTheConfirmationPanelWorksWhileAnAlertRunsModally) {
    EXPECT_TRUE(Focus::worksWhenModal(PanelKind::confirmation));
    EXPECT_FALSE(Focus::worksWhenModal(PanelKind::switchPrompt));
}

TEST(Focus, ReturnPressesTheDefaultButtonAndEscapeTheCancelButton) {
    EXPECT_EQ(Focus::keyEquivalent(PanelButton::accept), "\r");
    EXPECT_EQ(Focus::keyEquivalent(PanelButton::cancel), "\x1b");
}
