#include "ShellFixture.hpp"

#include <HalvoraPro/ConfirmationPanel.hpp>
#include <HalvoraPro/Focus.hpp>
#include <HalvoraPro/FadingPanel.hpp>
#include <HalvoraPro/SwitchPromptPanel.hpp>

using namespace ShellTests;
using HalvoraPro::PanelKind;
using HalvoraPro::Text;

namespace {

class ConfirmationPanelTest : public ShellTest {
protected:
    void SetUp() override {
        const auto saved = ultrawideSettings(PBPBehavior::fixedMissingSplit);
        start({sampleMonitor("ultrawide-34", PBPBehavior::fixedMissingSplit)}, {saved});
    }
    std::shared_ptr<HalvoraPro::ConfirmationPanel> panel() {
        return HalvoraPro::ConfirmationPanel::create(controller, clock, view);
    }
};

TEST_F(ConfirmationPanelTest, TheCountdownShowsTheSecondsLeftRoundedUpAndTheBarTheFractionLeft) {
    const auto content = HalvoraPro::ConfirmationPanel::content(14.2, 15);
    EXPECT_EQ(content.countdown, Text::localized("confirm.countdown", {15LL}));
    EXPECT_NEAR(*content.progress, 14.2 / 15, 1e-9);
    EXPECT_EQ(HalvoraPro::ConfirmationPanel::content(-3, 15).countdown,
              Text::localized("confirm.countdown", {0LL}));
    EXPECT_EQ(*HalvoraPro::ConfirmationPanel::content(-3, 15).progress, 0.0);
}

TEST_F(ConfirmationPanelTest, ReturnKeepsAndEscapeReverts) {
    const auto content = HalvoraPro::ConfirmationPanel::content(15, 15);
    EXPECT_EQ(content.defaultButton, Text::localized("confirm.keep"));  // Return
    EXPECT_EQ(content.cancelButton, Text::localized("confirm.revert")); // Escape
    EXPECT_EQ(content.title, Text::localized("confirm.title"));
    EXPECT_EQ(content.message, Text::localized("confirm.message"));
    EXPECT_EQ(content.symbol, "checkmark.rectangle.stack.fill");
}

TEST_F(ConfirmationPanelTest, ADeadlineUnderOneSecondAwayStillStartsWithAFullBar) {
    const auto p = panel();
    p->present(clock->now() + 0.4);
    EXPECT_DOUBLE_EQ(*view->rendered[PanelKind::confirmation].progress, 1.0);
    EXPECT_EQ(view->rendered[PanelKind::confirmation].countdown,
              Text::localized("confirm.countdown", {1LL}));
}

TEST_F(ConfirmationPanelTest, ADeadlineAlreadyPassedShowsAnEmptyBarWithoutDividingByZero) {
    const auto p = panel();
    p->present(clock->now() - 2);
    EXPECT_DOUBLE_EQ(p->total(), 1.0);
    EXPECT_DOUBLE_EQ(*view->rendered[PanelKind::confirmation].progress, 0.0);
}

TEST_F(ConfirmationPanelTest, TheTickerFollowsThePendingConfirmationAndStopsWhenItIsGone) {
    shell->applySplit(idOf("ultrawide-34"));
    const auto p = shell->confirmationPanel();
    clock->advance(5.5);
    EXPECT_EQ(view->rendered[PanelKind::confirmation].countdown,
              Text::localized("confirm.countdown", {10LL}));
    EXPECT_NEAR(*view->rendered[PanelKind::confirmation].progress, 9.5 / 15, 0.01);
    clock->advance(10); // the controller reverts by itself at the deadline
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_FALSE(p->isTimerRunning());
    EXPECT_EQ(view->count("fadeOut confirmation"), 1u);
}

TEST_F(ConfirmationPanelTest, TheButtonsCallKeepAndRevert) {
    shell->applySplit(idOf("ultrawide-34"));
    shell->confirmationPanel()->revert();
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_TRUE(store->stored.front().overrideEDID == std::nullopt);
    clock->advance(5);
    shell->applySplit(idOf("ultrawide-34"));
    shell->confirmationPanel()->keep();
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_TRUE(store->stored.front().overrideEDID.has_value());
}

TEST_F(ConfirmationPanelTest, TheDefaultActionOnReturnKeepsAndTheCancelActionOnEscapeReverts) {
    using HalvoraPro::PanelButton;
    EXPECT_EQ(HalvoraPro::Focus::keyEquivalent(PanelButton::accept), "\r");
    EXPECT_EQ(HalvoraPro::Focus::keyEquivalent(PanelButton::cancel), "\x1b");
    shell->applySplit(idOf("ultrawide-34"));
    shell->confirmationPanel()->press(PanelButton::cancel);
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_EQ(store->stored.front().overrideEDID, std::nullopt) << "Escape reverts";
    clock->advance(5);
    shell->applySplit(idOf("ultrawide-34"));
    shell->confirmationPanel()->press(PanelButton::accept);
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_TRUE(store->stored.front().overrideEDID.has_value()) << "Return keeps";
}

TEST_F(ConfirmationPanelTest, AFadeOutOvertakenByANewPresentationDoesNotHideTheNewPanel) {
    shell->applySplit(idOf("ultrawide-34"));
    shell->confirmationPanel()->keep();
    ASSERT_EQ(view->pendingFades.size(), 1u);
    clock->advance(5);
    shell->applySplit(idOf("ultrawide-34")); // presented again before the fade-out ends
    view->completeFades();
    EXPECT_TRUE(view->orderedIn[PanelKind::confirmation]);
    EXPECT_TRUE(shell->confirmationPanel()->panel().isVisible());
    EXPECT_EQ(view->count("orderOut confirmation"), 0u);
}

TEST(FadingPanel, AFadeOutThatEndsUndisturbedOrdersThePanelOut) {
    const auto view = std::make_shared<ScriptedShellView>();
    HalvoraPro::FadingPanel panel(PanelKind::switchPrompt, view);
    panel.fadeIn(HalvoraPro::Presentation::inPlace());
    panel.fadeOut();
    EXPECT_EQ(panel.generation(), 2u);
    view->completeFades();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(view->count("orderOut switchPrompt"), 1u);
}

// --- the switch prompt -----------------------------------------------------

class SwitchPromptPanelTest : public ShellTest {
protected:
    /// A port interrupt from the ultrawide, seen by the poll and followed by an offer.
    void interruptUltrawide() {
        machine->interrupt("ultrawide-34");
        clock->advance(2);
    }
};

TEST_F(SwitchPromptPanelTest, TheMessageNamesTheTargetAndItsResolution) {
    const auto toSplit =
        HalvoraPro::SwitchPromptPanel::content(HalvoraCore::ModeChoice::split, {1720, 1440});
    EXPECT_EQ(toSplit.message, Text::localized("prompt.toSplit", {std::string("1720×1440")}));
    const auto toFull =
        HalvoraPro::SwitchPromptPanel::content(HalvoraCore::ModeChoice::full, {3440, 1440});
    EXPECT_EQ(toFull.message, Text::localized("prompt.toFull", {std::string("3440×1440")}));
    EXPECT_EQ(toFull.defaultButton, Text::localized("prompt.switch"));
    EXPECT_EQ(toFull.cancelButton, Text::localized("prompt.ignore"));
    EXPECT_EQ(toFull.title, Text::localized("prompt.title"));
    EXPECT_FALSE(toFull.countdown);
}

TEST_F(SwitchPromptPanelTest, ASecondPromptReplacesTheTextWithoutANewFadeIn) {
    start();
    HalvoraPro::SwitchPromptPanel panel(controller, view);
    panel.show(HalvoraCore::ModeChoice::split, {1720, 1440});
    panel.show(HalvoraCore::ModeChoice::full, {3440, 1440});
    EXPECT_EQ(view->count("fadeIn switchPrompt"), 1u);
    EXPECT_EQ(view->count("render switchPrompt"), 2u);
    EXPECT_EQ(view->rendered[PanelKind::switchPrompt].message.key, "prompt.toFull");
}

TEST_F(SwitchPromptPanelTest, APromptWithdrawnByTheControllerFadesOutWithoutAnyButton) {
    start();
    identifyAndKeepUltrawide();
    interruptUltrawide();
    ASSERT_TRUE(controller->switchPrompt());
    EXPECT_EQ(view->count("fadeIn switchPrompt"), 1u);
    EXPECT_EQ(view->rendered[PanelKind::switchPrompt].message,
              Text::localized("prompt.toSplit", {std::string("1720×1440")}));
    clock->advance(HalvoraCore::SplitController::promptTimeout);
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_EQ(view->count("fadeOut switchPrompt"), 1u);
    EXPECT_FALSE(shell->switchPromptPanel()->isShown());
}

TEST_F(SwitchPromptPanelTest, TheButtonsDismissOrAcceptTheOffer) {
    start();
    identifyAndKeepUltrawide();
    interruptUltrawide();
    shell->switchPromptPanel()->ignore();
    EXPECT_FALSE(controller->switchPrompt());
    EXPECT_EQ(view->count("fadeOut switchPrompt"), 1u);
    interruptUltrawide();
    shell->switchPromptPanel()->accept();
    clock->advance(0);
    EXPECT_EQ(machine->port("ultrawide-34").mode, (HalvoraCore::DisplayMode{1720, 1440, 60}));
}

} // namespace
