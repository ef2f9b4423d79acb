#include "ControllerFixture.hpp"

using namespace ControllerTesting;
using Step = IdentificationWizard::Step;

TEST_F(ControllerTest, AWizardForADisplayThatIsNotAttachedIsUnavailable) {
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-9"));
    EXPECT_EQ(wizard->step(), Step::displayUnavailable());
}

TEST_F(ControllerTest, AWizardForAnInvalidEDIDIsUnavailableNotAnError) {
    system->attach("dcp-1", Bytes(100, 0));
    startSettled();
    EXPECT_EQ(controller->startIdentification(DisplayID("dcp-1"))->step(), Step::displayUnavailable());
}

TEST_F(ControllerTest, DetectOffersTheGuessAndRecheckLooksAgain) {
    system->attach("dcp-1", ultrawideHalf());
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    EXPECT_EQ(wizard->step(), Step::chooseNative({EDIDKit::NativeResolutionGuess::Kind::split, {{3440, 1440}}}));
    wizard->noneOfThese();
    EXPECT_EQ(wizard->step(), Step::replugGuidance());
    system->detach("dcp-1");
    wizard->recheck();
    EXPECT_EQ(wizard->step(), Step::displayUnavailable());
}

TEST_F(ControllerTest, ConfirmSavesTheNativeAndTheSplitResolutionFollows) {
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    EXPECT_EQ(wizard->splitResolution(), std::nullopt);
    wizard->confirm({3440, 1440});
    EXPECT_EQ(wizard->step(), Step::togglePBP());
    EXPECT_EQ(wizard->splitResolution(), (Resolution{1720, 1440}));
    EXPECT_EQ(store->stored[0].native, (Resolution{3440, 1440}));
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull());
    EXPECT_EQ(changes, 1);
}

TEST_F(ControllerTest, AfterTheControllerIsGoneConfirmStillMovesOnButNothingElseHappens) {
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    controller.reset();
    wizard->confirm({3440, 1440});
    EXPECT_EQ(wizard->step(), Step::togglePBP());
    EXPECT_EQ(wizard->splitResolution(), std::nullopt);
    EXPECT_TRUE(store->saves.empty());
    wizard->finishToggle();
    wizard->skipToggle();
    wizard->cancel();
    EXPECT_EQ(wizard->step(), Step::togglePBP());
}

TEST_F(ControllerTest, CancelEndsOnlyTheWizardsOwnObservation) {
    attachUltrawide();
    startSettled();
    const auto first = controller->startIdentification(DisplayID("dcp-1"));
    first->confirm({3440, 1440});
    const auto second = controller->startIdentification(DisplayID("dcp-1"));
    second->confirm({3440, 1440});
    ASSERT_TRUE(controller->isObservingPBP());
    first->cancel();
    EXPECT_TRUE(controller->isObservingPBP()) << "another wizard's observation stays";
    EXPECT_EQ(clock->pendingCount(), 1u) << "and no restore pass is asked for";
    second->cancel();
    EXPECT_FALSE(controller->isObservingPBP());
    EXPECT_EQ(clock->nextDeadline(), clock->now() + 3) << "a restore pass follows";
}

TEST_F(ControllerTest, CheckAgainAfterAReplugFindsTheMonitorUnderItsNewID) {
    system->attach("dcp-1", ultrawideHalf());
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->noneOfThese();
    // Unplugged and plugged in again, now with PBP off: a new port entry.
    system->detach("dcp-1");
    system->attach("dcp-7", ultrawideFull(), {full60}, full60);
    wizard->recheck();
    EXPECT_EQ(wizard->display(), DisplayID("dcp-7"));
    EXPECT_EQ(wizard->step(), Step::chooseNative({EDIDKit::NativeResolutionGuess::Kind::full, {{3440, 1440}}}));
    wizard->confirm({3440, 1440});
    EXPECT_EQ(wizard->step(), Step::togglePBP());
    ASSERT_EQ(store->stored.size(), 1u);
    EXPECT_EQ(store->stored[0].native, (Resolution{3440, 1440}));
    // It is dcp-7 that is watched: the monitor presenting another EDID of
    // its own there is the user's toggle.
    system->setFactoryEDID("dcp-7", ultrawideHalf());
    system->fireConfigurationChange(true);
    clock->advance(SplitController::restoreDebounce);
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), Step::finished(PBPBehavior::switchesOnToggle));
}

TEST_F(ControllerTest, ConfirmingAfterAReplugSavesTheAnswerForTheMonitorUnderItsNewID) {
    attachUltrawide("dcp-1");
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    system->detach("dcp-1");
    attachUltrawide("dcp-2");
    wizard->confirm({3440, 1440});
    EXPECT_EQ(wizard->display(), DisplayID("dcp-2"));
    ASSERT_EQ(store->stored.size(), 1u);
    EXPECT_TRUE(controller->isObservingPBP());
}

TEST_F(ControllerTest, ADifferentMonitorOnTheSamePortIsNotTakenForTheOneBeingIdentified) {
    attachUltrawide("dcp-1");
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    system->detach("dcp-1");
    system->attach("dcp-2", superwideFull());
    wizard->recheck();
    EXPECT_EQ(wizard->step(), Step::displayUnavailable());
    EXPECT_EQ(wizard->display(), DisplayID("dcp-1"));
}

TEST_F(ControllerTest, TheWizardMovesItsOwnStepOnWhatTheControllerReports) {
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    int moves = 0;
    wizard->onChange = [&] { ++moves; };
    IdentificationProgress& progress = *wizard;
    progress.confirmationEnded(true);
    EXPECT_EQ(wizard->step().kind, Step::Kind::chooseNative) << "nothing awaited confirmation";
    EXPECT_EQ(moves, 0);
    progress.judged(PBPBehavior::latchedAtPlug, IdentificationProgress::Outcome::awaitingConfirmation);
    EXPECT_EQ(wizard->step(), Step::confirming(PBPBehavior::latchedAtPlug));
    progress.confirmationEnded(false);
    EXPECT_EQ(wizard->step(), Step::reverted(PBPBehavior::latchedAtPlug));
    progress.judged(PBPBehavior::fixedMissingSplit, IdentificationProgress::Outcome::notWritten);
    EXPECT_EQ(wizard->step(), Step::reverted(PBPBehavior::fixedMissingSplit));
    progress.judged(PBPBehavior::fixedWithSplit, IdentificationProgress::Outcome::adopted);
    EXPECT_EQ(wizard->step(), Step::finished(PBPBehavior::fixedWithSplit));
    progress.displayUnavailable();
    EXPECT_EQ(wizard->step(), Step::displayUnavailable());
    EXPECT_EQ(moves, 5);
}
