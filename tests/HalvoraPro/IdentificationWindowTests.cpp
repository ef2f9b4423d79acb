#include "ShellFixture.hpp"

#include <HalvoraPro/IdentificationWindow.hpp>
#include <gmock/gmock.h>

using namespace ShellTests;
using HalvoraCore::IdentificationWizard;
using HalvoraPro::IdentificationContent;
using HalvoraPro::IdentificationWindow;
using HalvoraPro::Text;
using Action = IdentificationContent::Action;
using Step = IdentificationWizard::Step;

namespace {

const std::optional<EDIDKit::Resolution> split{EDIDKit::Resolution{1720, 1440}};

std::vector<std::string> rowKeys(const IdentificationContent& c) {
    std::vector<std::string> keys;
    for (const auto& r : c.rows)
        keys.push_back(r.key);
    return keys;
}

TEST(IdentificationContent, ChooseNativeHintsByTheGuessAsksAndOffersEveryCandidateAndNoneOfThese) {
    using Kind = EDIDKit::NativeResolutionGuess::Kind;
    const std::pair<Kind, const char*> hints[] = {{Kind::full, "identify.hint.full"},
                                                  {Kind::split, "identify.hint.split"},
                                                  {Kind::uncertain, "identify.hint.uncertain"}};
    for (const auto& [kind, hint] : hints) {
        const auto c = IdentificationWindow::content(
            Step::chooseNative({kind, {{3440, 1440}, {5120, 1440}}}), "UW34", split);
        EXPECT_EQ(c.heading, Text::localized("identify.heading", {std::string("UW34")}));
        EXPECT_EQ(c.windowTitle, Text::localized("identify.windowTitle"));
        EXPECT_THAT(rowKeys(c), ::testing::ElementsAre(hint, "identify.question"));
        ASSERT_EQ(c.radios.size(), 3u);
        EXPECT_EQ(c.radios[0].label, Text::literal("3440×1440"));
        EXPECT_EQ(c.radios[1].choice, (EDIDKit::Resolution{5120, 1440}));
        EXPECT_EQ(c.radios[2].label, Text::localized("identify.noneOfThese"));
        EXPECT_FALSE(c.radios[2].choice);
        EXPECT_EQ(c.primary, (IdentificationContent::Button{Text::localized("identify.confirm"),
                                                            Action::confirm}));
        EXPECT_EQ(c.secondary, (IdentificationContent::Button{Text::localized("identify.cancel"),
                                                              Action::close}));
    }
}

TEST(IdentificationContent, ExactlyOneRadioIsOnTheSuggestedCandidateAtFirst) {
    const auto step = Step::chooseNative(
        {EDIDKit::NativeResolutionGuess::Kind::uncertain, {{2560, 1440}, {5120, 1440}}});
    for (std::size_t selected : {0u, 1u, 2u, 7u}) {
        const auto c = IdentificationWindow::content(step, "X", split, selected);
        std::size_t on = 0;
        for (const auto& r : c.radios)
            on += r.on ? 1u : 0u;
        EXPECT_EQ(on, 1u);
        EXPECT_TRUE(c.radios[selected < 3 ? selected : 0].on);
    }
}

TEST(IdentificationContent, EveryOtherStepHasItsRowsAndButtons) {
    const auto check = [](const Step& step, std::vector<std::string> rows, const char* primary,
                          Action action, std::optional<std::pair<const char*, Action>> secondary) {
        const auto c = IdentificationWindow::content(step, "X", split);
        EXPECT_EQ(rowKeys(c), rows);
        EXPECT_TRUE(c.radios.empty());
        EXPECT_EQ(c.primary, (IdentificationContent::Button{Text::localized(primary), action}));
        if (secondary)
            EXPECT_EQ(c.secondary, (IdentificationContent::Button{Text::localized(secondary->first),
                                                                  secondary->second}));
        else
            EXPECT_FALSE(c.secondary);
    };
    check(Step::confirming(HalvoraCore::PBPBehavior::latchedAtPlug), {"identify.confirming"},
          "identify.ok", Action::close, {});
    check(Step::reverted(HalvoraCore::PBPBehavior::latchedAtPlug), {"identify.reverted"},
          "identify.ok", Action::close, {});
    check(Step::replugGuidance(), {"identify.replug"}, "identify.recheck", Action::recheck,
          std::pair{"identify.cancel", Action::close});
    check(Step::displayUnavailable(), {"identify.unavailable"}, "identify.recheck", Action::recheck,
          std::pair{"identify.cancel", Action::close});
    check(Step::togglePBP(), {"identify.togglePBP", "identify.watching"}, "identify.toggleDone",
          Action::toggleDone, std::pair{"identify.skip", Action::skip});
}

TEST(IdentificationContent, TheResultNamesTheBehaviourAndTheSplitResolution) {
    for (auto b :
         {HalvoraCore::PBPBehavior::switchesOnToggle, HalvoraCore::PBPBehavior::latchedAtPlug,
          HalvoraCore::PBPBehavior::fixedMissingSplit, HalvoraCore::PBPBehavior::fixedWithSplit}) {
        const auto c = IdentificationWindow::content(Step::finished(b), "X", split);
        ASSERT_EQ(c.rows.size(), 1u);
        EXPECT_EQ(c.rows[0],
                  Text::localized("identify.result." + std::string(HalvoraCore::rawValue(b)),
                                  {std::string("1720×1440")}));
        EXPECT_EQ(c.primary.action, Action::close);
    }
    const auto none = IdentificationWindow::content(
        Step::finished(HalvoraCore::PBPBehavior::fixedWithSplit), "X", std::nullopt);
    EXPECT_EQ(none.rows[0].arguments, std::vector<HalvoraPro::TextArgument>{std::string()});
}

class IdentificationWindowTest : public ShellTest {
protected:
    std::shared_ptr<IdentificationWindow> open() {
        auto window = IdentificationWindow::create(
            controller->startIdentification(idOf("ultrawide-34")), "UW34", view);
        window->onConfirm = [this] { ++confirms; };
        window->onClose = [this] { ++closes; };
        window->onAwaitingConfirmation = [this] { ++awaiting; };
        window->render();
        return window;
    }
    int confirms = 0, closes = 0, awaiting = 0;
};

TEST_F(IdentificationWindowTest, SelectingARadioTurnsTheOthersOff) {
    start();
    const auto window = open();
    ASSERT_TRUE(window->select(1));
    EXPECT_FALSE(view->identification->radios[0].on);
    EXPECT_TRUE(view->identification->radios[1].on);
    EXPECT_FALSE(window->select(2));
}

TEST_F(IdentificationWindowTest, ConfirmingACandidateTellsTheWizardAndCallsOnConfirm) {
    start();
    const auto window = open();
    window->confirm();
    EXPECT_EQ(confirms, 1);
    EXPECT_EQ(window->wizard().step().kind, Step::Kind::togglePBP);
    EXPECT_EQ(view->identification->primary.action, Action::toggleDone);
    EXPECT_EQ(store->stored.size(), 1u);
}

TEST_F(IdentificationWindowTest, NoneOfTheseGoesToReplugGuidanceWithoutOnConfirm) {
    start();
    const auto window = open();
    window->select(1);
    window->confirm();
    EXPECT_EQ(confirms, 0);
    EXPECT_EQ(window->wizard().step().kind, Step::Kind::replugGuidance);
    EXPECT_EQ(rowKeys(*view->identification), std::vector<std::string>{"identify.replug"});
    EXPECT_TRUE(store->stored.empty());
}

TEST_F(IdentificationWindowTest, RecheckLooksAtTheDisplayAgain) {
    start();
    const auto window = open();
    window->select(1);
    window->confirm();
    window->press(Action::recheck);
    EXPECT_EQ(window->wizard().step().kind, Step::Kind::chooseNative);
}

TEST_F(IdentificationWindowTest, AnUnpluggedDisplayIsUnavailableUntilItComesBack) {
    start();
    const auto window = open();
    machine->unplug("ultrawide-34");
    clock->advance(0);
    window->recheck();
    EXPECT_EQ(window->wizard().step().kind, Step::Kind::displayUnavailable);
}

TEST_F(IdentificationWindowTest, ReachingConfirmingRendersAndAsksForThePanel) {
    start();
    const auto window = open();
    window->confirm();
    machine->setPBP("ultrawide-34", true);
    clock->advance(20);
    EXPECT_EQ(awaiting, 1);
    EXPECT_EQ(rowKeys(*view->identification), std::vector<std::string>{"identify.confirming"});
}

TEST_F(IdentificationWindowTest, SkippingTheToggleEndsTheObservation) {
    start();
    const auto window = open();
    window->confirm();
    ASSERT_TRUE(controller->isObservingPBP());
    window->press(Action::skip);
    EXPECT_FALSE(controller->isObservingPBP());
}

TEST_F(IdentificationWindowTest, ClosingStopsTheObservationAndCallsOnCloseOnce) {
    start();
    const auto window = open();
    window->confirm();
    window->close();
    window->close();
    EXPECT_FALSE(controller->isObservingPBP());
    EXPECT_EQ(closes, 1);
    EXPECT_FALSE(view->identification);
    EXPECT_FALSE(window->isOpen());
}

} // namespace
