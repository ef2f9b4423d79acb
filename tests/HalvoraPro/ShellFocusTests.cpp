// Focus in the running shell: which window the user's keyboard goes to as the
// identification window, the confirmation panel, the switch prompt and the
// alerts come and go, and that an alert never blocks a pending confirmation.

#include "ShellFixture.hpp"

using namespace ShellTests;
using HalvoraCore::IdentificationWizard;
using HalvoraPro::PanelButton;
using HalvoraPro::PanelKind;
using HalvoraPro::Presentation;
using Source = HalvoraSimulation::RecordedMachine::Source;

namespace {

constexpr Presentation broughtToTheUser{
    .activatesApplication = true, .becomesKey = true, .centres = true, .ordersFront = true};

class ShellFocusTest : public ShellTest {
protected:
    /// Identifies the ultrawide as 3440×1440, toggles PBP on it and presses
    /// "I've Toggled It": the split is applied and waits for confirmation.
    void toggleAndPressToggleDone() {
        shell->identify(idOf("ultrawide-34"));
        shell->identification()->confirm();
        ASSERT_EQ(shell->identification()->wizard().step().kind,
                  IdentificationWizard::Step::Kind::togglePBP);
        machine->setPBP("ultrawide-34", true);
        clock->advance(1);
        shell->identification()->toggleDone();
        clock->advance(0);
        ASSERT_TRUE(controller->pendingConfirmation());
        ASSERT_EQ(shell->identification()->wizard().step().kind,
                  IdentificationWizard::Step::Kind::confirming);
    }
};

} // namespace

TEST_F(ShellFocusTest, TheIdentificationWindowIsBroughtToTheUserOnlyWhenItFirstAppears) {
    start();
    shell->identify(idOf("ultrawide-34"));
    ASSERT_EQ(view->identificationPresentations.size(), 1u);
    EXPECT_EQ(view->identificationPresentations.front(), broughtToTheUser);
    shell->identification()->confirm();
    ASSERT_GT(view->identificationPresentations.size(), 1u);
    for (std::size_t i = 1; i < view->identificationPresentations.size(); ++i)
        EXPECT_EQ(view->identificationPresentations[i], Presentation::inPlace()) << "show " << i;
}

TEST_F(ShellFocusTest, AClickOnARadioChangesTheWindowWhereItStands) {
    start();
    shell->identify(idOf("ultrawide-34"));
    const int activations = view->activations;
    ASSERT_TRUE(shell->identification()->select(1));
    EXPECT_EQ(view->identificationPresentations.back(), Presentation::inPlace());
    EXPECT_EQ(view->activations, activations);
}

TEST_F(ShellFocusTest,
       AfterToggleDoneTheConfirmationPanelKeepsTheKeyboardThroughTheWindowsNextRender) {
    start();
    toggleAndPressToggleDone();
    EXPECT_EQ(view->keyWindow, "confirmation");
    EXPECT_EQ(view->panelPresentations[PanelKind::confirmation].back(),
              (Presentation{.activatesApplication = false,
                            .becomesKey = true,
                            .centres = true,
                            .ordersFront = true}));
    // The wizard moves on while the panel is up: the window changes in place.
    const auto shows = view->identificationPresentations.size();
    shell->identification()->render();
    ASSERT_GT(view->identificationPresentations.size(), shows);
    EXPECT_EQ(view->identificationPresentations.back(), Presentation::inPlace());
    EXPECT_EQ(view->keyWindow, "confirmation");
    EXPECT_EQ(shell->focus().keyWindow(), HalvoraPro::ShellWindow::confirmationPanel);
}

TEST_F(ShellFocusTest, ReturnOnTheConfirmationPanelKeepsAndTheChangeStays) {
    start();
    toggleAndPressToggleDone();
    shell->press(PanelKind::confirmation, PanelButton::accept);
    EXPECT_FALSE(controller->pendingConfirmation());
    clock->advance(30);
    EXPECT_EQ(machine->port("ultrawide-34").source, Source::override) << "kept, not reverted";
    ASSERT_FALSE(store->stored.empty());
    EXPECT_TRUE(store->stored.front().overrideEDID);
}

TEST_F(ShellFocusTest, EscapeOnTheConfirmationPanelReverts) {
    start();
    toggleAndPressToggleDone();
    shell->press(PanelKind::confirmation, PanelButton::cancel);
    EXPECT_FALSE(controller->pendingConfirmation());
    clock->advance(5);
    EXPECT_NE(machine->port("ultrawide-34").source, Source::override);
}

TEST_F(ShellFocusTest, WhenThePanelGoesTheIdentificationWindowTakesTheKeyboardBackWithoutMoving) {
    start();
    toggleAndPressToggleDone();
    const int activations = view->activations;
    shell->press(PanelKind::confirmation, PanelButton::accept);
    EXPECT_EQ(view->keyWindow, "identification");
    bool tookKeyBack = false;
    for (const auto& how : view->identificationPresentations)
        tookKeyBack = tookKeyBack || how == HalvoraPro::Focus::keyReturned();
    EXPECT_TRUE(tookKeyBack);
    EXPECT_EQ(view->activations, activations);
}

TEST_F(ShellFocusTest, IdentifyingAgainBringsTheOpenWindowForwardWithoutCentringIt) {
    start();
    shell->identify(idOf("ultrawide-34"));
    shell->identify(idOf("ultrawide-34"));
    EXPECT_EQ(view->identificationPresentations.back(), (Presentation{.activatesApplication = true,
                                                                      .becomesKey = true,
                                                                      .centres = false,
                                                                      .ordersFront = true}));
}

TEST_F(ShellFocusTest, TheSwitchPromptNeitherActivatesTheApplicationNorTakesTheKeyboard) {
    start();
    identifyAndKeepUltrawide();
    const int activations = view->activations;
    const std::string key = view->keyWindow;
    machine->setPBP("ultrawide-34", false);
    clock->advance(2);
    ASSERT_TRUE(controller->switchPrompt()) << "the toggle was seen through the EventLog poll";
    ASSERT_EQ(view->panelPresentations[PanelKind::switchPrompt].size(), 1u);
    EXPECT_EQ(view->panelPresentations[PanelKind::switchPrompt].front(),
              (Presentation{.activatesApplication = false,
                            .becomesKey = false,
                            .centres = true,
                            .ordersFront = true}));
    EXPECT_EQ(view->activations, activations);
    EXPECT_EQ(view->keyWindow, key);
}

TEST_F(ShellFocusTest, AnAlertDuringTheConfirmationWaitsForItAndKeepStillWorks) {
    start();
    toggleAndPressToggleDone();
    shell->show(HalvoraCore::SplitError::systemFailure("the disk is full"));
    EXPECT_TRUE(view->alerts.empty()) << "no modal alert over the panel";
    EXPECT_EQ(shell->heldAlerts(), 1u);
    shell->press(PanelKind::confirmation, PanelButton::accept);
    EXPECT_TRUE(view->alerts.empty()) << "not in a modal loop inside the keep itself";
    clock->advance(0);
    ASSERT_EQ(view->alerts.size(), 1u) << "it runs once the panel has gone";
    EXPECT_EQ(shell->heldAlerts(), 0u);
    clock->advance(30);
    EXPECT_EQ(machine->port("ultrawide-34").source, Source::override);
}

TEST_F(ShellFocusTest, HeldAlertsRunInOrderWhenTheChangeRevertsByItself) {
    start();
    toggleAndPressToggleDone();
    const auto first = HalvoraPro::errorAlert(HalvoraCore::SplitError::displayNotFound());
    const auto second = HalvoraPro::errorAlert(HalvoraCore::SplitError::notIdentified());
    shell->show(HalvoraCore::SplitError::displayNotFound());
    shell->show(HalvoraCore::SplitError::notIdentified());
    clock->advance(HalvoraCore::SplitController::confirmationTimeout + 1);
    EXPECT_FALSE(controller->pendingConfirmation());
    ASSERT_EQ(view->alerts.size(), 2u);
    EXPECT_EQ(view->alerts[0].alert, first);
    EXPECT_EQ(view->alerts[1].alert, second);
}

TEST_F(ShellFocusTest, AConflictAlertHeldThroughTheConfirmationIsDroppedWhenTheToolHasGone) {
    start();
    toggleAndPressToggleDone();
    machine->setTool(HalvoraCore::ConflictingTool::betterDisplay, true);
    shell->showConflict(HalvoraCore::ConflictingTool::betterDisplay);
    EXPECT_TRUE(view->alerts.empty());
    machine->setTool(HalvoraCore::ConflictingTool::betterDisplay, false);
    shell->press(PanelKind::confirmation, PanelButton::accept);
    EXPECT_TRUE(view->alerts.empty());
}

TEST_F(ShellFocusTest, AnAlertWithNoConfirmationShownRunsAtOnceAndActivatesTheApplication) {
    start();
    const int activations = view->activations;
    shell->show(HalvoraCore::SplitError::systemFailure("the disk is full"));
    EXPECT_EQ(view->alerts.size(), 1u);
    EXPECT_GT(view->activations, activations);
}
