// A change waiting for confirmation when something else happens: a new apply
// right after a revert, the monitor unplugged, the application quitting, an
// identification whose override cannot be written.

#include "ControllerFixture.hpp"

#include <EDIDKit/EDIDBuilder.hpp>
#include <stdexcept>

using namespace ControllerTesting;

using Calls = std::vector<std::string>;

namespace {

/// An override kept in an earlier run (it declares another screen size),
/// different from the split applied now.
Bytes earlierOverride() {
    return foreignEDIDFor(ultrawideSplit(), 79);
}

} // namespace

class PendingChangeTest : public ControllerTest {
protected:
    /// The ultrawide with an override of an earlier run on its port; applying
    /// now builds the split from the current EDID.
    void startWithEarlierOverride() {
        DisplaySettings s = ultrawideSettings();
        s.overrideEDID = earlierOverride();
        s.behavior = PBPBehavior::fixedMissingSplit;
        store->stored = {s};
        attachUltrawide();
        system->setOverride("dcp-1", earlierOverride());
        startSettled();
    }
};

TEST_F(PendingChangeTest, AnApplyWithinThreeSecondsOfARevertIsNotOverwrittenByThatRevertsFollowUp) {
    startWithEarlierOverride();
    const double t = clock->now();
    controller->applySplit(DisplayID("dcp-1"));
    controller->revert(); // the factory EDID now; the earlier override was due back at t+3
    clock->advanceTo(t + 1);
    controller->applySplit(DisplayID("dcp-1"));
    const Bytes applied = *system->overrideOn("dcp-1");
    ASSERT_NE(applied, earlierOverride());
    clock->advanceTo(t + 10);
    EXPECT_EQ(system->overrideOn("dcp-1"), applied) << "the new change is still on the display";
    EXPECT_TRUE(controller->pendingConfirmation());
    EXPECT_EQ(callCount("applyEDIDOverride dcp-1"), 2)
        << "only the two applies, no re-application of the earlier override";
}

TEST_F(PendingChangeTest, AFailedApplyLeavesARevertsFollowUpInPlace) {
    startWithEarlierOverride();
    const double t = clock->now();
    controller->applySplit(DisplayID("dcp-1"));
    controller->revert();
    system->failApply = std::make_exception_ptr(std::runtime_error("refused"));
    EXPECT_THROW(controller->applySplit(DisplayID("dcp-1")), SplitError);
    system->failApply = nullptr;
    clock->advanceTo(t + 3);
    EXPECT_EQ(system->overrideOn("dcp-1"), earlierOverride())
        << "what was there before the revert comes back";
}

TEST_F(PendingChangeTest, UnpluggingTheMonitorClosesItsChangeQuietly) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    system->detach("dcp-1");
    system->fireConfigurationChange(true);
    clock->advance(3); // the restore pass after the unplug
    EXPECT_FALSE(controller->pendingConfirmation()) << "the panel closes";
    EXPECT_GE(changes, 1);
    clock->advance(30);
    EXPECT_TRUE(errors.empty()) << "no error alert";
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"}))
        << "nothing is written to a port that is gone";
    EXPECT_TRUE(store->saves.empty()) << "nothing is saved";
}

TEST_F(PendingChangeTest, AChangeWhoseMonitorIsGoneWhenTheTimeRunsOutEndsWithoutAnError) {
    // No reconfiguration reaches the controller before the deadline.
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    system->detach("dcp-1");
    clock->advance(15);
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_EQ(changes, 1);
    clock->advance(10);
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"}));
}

TEST_F(PendingChangeTest, AWizardWaitingForAChangeWhoseMonitorWentAwayEndsReverted) {
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    wizard->finishToggle();
    ASSERT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::confirming);
    system->detach("dcp-1");
    clock->advance(15);
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::reverted(PBPBehavior::fixedMissingSplit));
    EXPECT_TRUE(errors.empty());
}

TEST_F(PendingChangeTest, KeepingAfterTheMonitorWasUnpluggedDuringItsConfirmationSavesNothingAndSaysReverted) {
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    wizard->finishToggle();
    ASSERT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::confirming);
    const auto saved = store->stored;
    const auto saves = store->saves.size();
    changes = 0;
    system->detach("dcp-1");
    controller->keep(); // before the restore pass noticed the unplug
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::reverted(PBPBehavior::fixedMissingSplit))
        << "nothing says kept";
    EXPECT_EQ(store->saves.size(), saves) << "nothing is saved";
    EXPECT_EQ(store->stored, saved);
    EXPECT_EQ(changes, 1);
    clock->advance(30);
    EXPECT_TRUE(errors.empty());
}

TEST_F(PendingChangeTest, QuittingWhileKeepingSplitsStillTakesBackAnUnconfirmedChange) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    controller->revertPendingForQuit();
    EXPECT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1", "restoreFactoryEDID dcp-1"}));
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt);
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_TRUE(store->saves.empty());
}

TEST_F(PendingChangeTest,
       QuittingWhileKeepingSplitsPutsBackTheConfirmedOverrideThatWasThereBefore) {
    // Kept before the picture-by-picture EDID was known; applying again now
    // writes the merged override instead.
    DisplaySettings s = ultrawideKeptBeforeItsHalfWasKnown();
    s.factorySplitEDID = ultrawideHalf();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    startSettled();
    controller->applySplit(DisplayID("dcp-1"));
    ASSERT_EQ(system->overrideOn("dcp-1"), ultrawideMerged());
    system->calls.clear();
    controller->revertPendingForQuit();
    ASSERT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"}));
    EXPECT_EQ(system->calls[0].edid, ultrawideSplit());
    EXPECT_EQ(store->stored[0].overrideEDID, ultrawideSplit());
    EXPECT_FALSE(controller->pendingConfirmation());
}

TEST_F(PendingChangeTest, QuittingWhileKeepingSplitsWithNothingPendingTouchesNothing) {
    attachUltrawideWithSplitKept();
    startSettled();
    controller->revertPendingForQuit();
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ(changes, 0);
}

TEST_F(PendingChangeTest,
       AWizardWhoseMonitorNeedsAnOverrideThatCannotBeWrittenEndsRevertedAndSaysWhy) {
    attachUltrawide();
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    system->failApply =
        std::make_exception_ptr(std::runtime_error("IOAVServiceSetVirtualEDIDMode failed"));
    wizard->finishToggle(); // judged fixedMissingSplit: it needs the override
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::reverted(PBPBehavior::fixedMissingSplit))
        << "never \"All set\" for a split that is not there";
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0], SplitError::hardware(DisplayOperation::writeOverride, "IOAVServiceSetVirtualEDIDMode failed"));
    EXPECT_FALSE(controller->pendingConfirmation());
    EXPECT_EQ(store->stored[0].behavior, PBPBehavior::fixedMissingSplit) << "the verdict is kept";
}

TEST_F(PendingChangeTest, AWizardWhoseMonitorHasNoRoomForTheSplitEndsReverted) {
    // Only a base block and no CTA extension: the split timing has nowhere to go.
    EDIDKit::EDIDBuilder b;
    b.manufacturer("HLV").productID(0x1234).serialNumber(7);
    b.baseTiming(EDIDKit::Timing::cvtReducedBlanking(3440, 1440, 60.0));
    b.baseTiming(EDIDKit::Timing::cvtReducedBlanking(2560, 1440, 60.0));
    b.baseTiming(EDIDKit::Timing::cvtReducedBlanking(1920, 1440, 60.0));
    b.baseTiming(EDIDKit::Timing::cvtReducedBlanking(1600, 1200, 60.0));
    system->attach("dcp-1", b.build(), {full60}, full60);
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    wizard->finishToggle();
    EXPECT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::reverted);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].kind(), SplitError::Kind::cannotAddSplit);
}
