// Watching a monitor while the user toggles picture-by-picture, and the verdicts.

#include "ControllerFixture.hpp"

#include <HalvoraCore/PBPObservation.hpp>

using namespace ControllerTesting;

namespace {

const Bytes& superwidePBP() { return *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture; }

} // namespace

TEST(PBPObservation, TwoChangesASecondApartCountAsOneToggleAndTwoAndAHalfApartAsTwo) {
    PBPObservation close({}, DisplayID("d"), Bytes{1}, std::nullopt);
    EXPECT_TRUE(close.noteEDID(Bytes{2}, 100));
    EXPECT_TRUE(close.noteEDID(Bytes{1}, 101));
    EXPECT_EQ(close.toggles, 1);
    PBPObservation apart({}, DisplayID("d"), Bytes{1}, std::nullopt);
    apart.noteEDID(Bytes{2}, 100);
    apart.noteEDID(Bytes{1}, 102.5);
    EXPECT_EQ(apart.toggles, 2);
    EXPECT_TRUE(apart.edidChanged);
}

TEST(PBPObservation, WhenOurOverrideIsShownTheFirstOwnEDIDIsOnlyTheBaseline) {
    PBPObservation o({}, DisplayID("d"), Bytes{9}, Bytes{9});
    EXPECT_EQ(o.factoryEDID, std::nullopt);
    EXPECT_FALSE(o.noteEDID(Bytes{9}, 1)) << "our override says nothing";
    EXPECT_FALSE(o.noteEDID(Bytes{1}, 2)) << "baseline";
    EXPECT_FALSE(o.edidChanged);
    EXPECT_FALSE(o.noteEDID(Bytes{1}, 3));
    EXPECT_TRUE(o.noteEDID(Bytes{2}, 4));
    EXPECT_EQ(o.toggles, 1);
}

class ObservationTest : public ControllerTest {
protected:
    std::shared_ptr<IdentificationWizard> wizard;
    int wizardChanges = 0;

    /// Identifies the superwide (5120×1440) in full mode and starts watching.
    void watchSuperwide() {
        system->attach("dcp-1", superwideFull(), {{5120, 1440, 60}, {2560, 1440, 60}}, DisplayMode{5120, 1440, 60});
        startSettled();
        wizard = controller->startIdentification(DisplayID("dcp-1"));
        wizard->onChange = [this] { ++wizardChanges; };
        wizard->confirm({5120, 1440});
        ASSERT_TRUE(controller->isObservingPBP());
    }
    /// Identifies the ultrawide and starts watching.
    void watchUltrawide() {
        attachUltrawide();
        startSettled();
        wizard = controller->startIdentification(DisplayID("dcp-1"));
        wizard->onChange = [this] { ++wizardChanges; };
        wizard->confirm({3440, 1440});
        ASSERT_TRUE(controller->isObservingPBP());
    }
    /// The monitor presents another EDID of its own and re-enumerates.
    void toggleTo(const Bytes& edid) {
        system->setFactoryEDID("dcp-1", edid);
        system->fireConfigurationChange(true);
    }
};

TEST_F(ObservationTest, StartedOnOurOverrideTheMonitorsFirstOwnEDIDOnlySetsTheBaseline) {
    attachUltrawideWithSplitKept();
    startSettled();
    wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    ASSERT_TRUE(controller->isObservingPBP());
    // The override goes and the monitor shows its own EDID: no toggle.
    system->setOverride("dcp-1", std::nullopt);
    system->fireConfigurationChange(true);
    const auto idle = clock->pendingCount();
    clock->advance(SplitController::restoreDebounce);
    ASSERT_TRUE(controller->isObservingPBP());
    EXPECT_EQ(clock->pendingCount(), idle - 1) << "no judgement follows: it was no toggle signal";
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::confirming(PBPBehavior::fixedMissingSplit))
        << "a monitor that never changed its EDID";
}

TEST_F(ObservationTest, TwoCountedTogglesAreJudgedThreeSecondsAfterTheLastSignal) {
    watchSuperwide();
    const double t = clock->now();
    toggleTo(superwidePBP());
    clock->advanceTo(t + 3); // restore pass notes the EDID change: toggle 1 at t+3
    toggleTo(superwideFull());
    clock->advanceTo(t + 6); // toggle 2 at t+6
    clock->advanceTo(t + 8.9);
    EXPECT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::togglePBP);
    clock->advanceTo(t + 9);
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::switchesOnToggle));
    EXPECT_EQ(wizardChanges, 1);
    EXPECT_FALSE(controller->isObservingPBP());
    EXPECT_EQ(store->stored.back().behavior, PBPBehavior::switchesOnToggle);
}

TEST_F(ObservationTest, OneToggleIsJudgedFifteenSecondsAfterIt) {
    watchSuperwide();
    const double t = clock->now();
    toggleTo(superwidePBP());
    clock->advanceTo(t + 3);
    clock->advanceTo(t + 17.9);
    EXPECT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::togglePBP);
    clock->advanceTo(t + 18);
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::switchesOnToggle));
}

TEST_F(ObservationTest, WithoutSignalsTheVerdictComesNinetySecondsAfterTheStart) {
    watchUltrawide();
    const double t = clock->now();
    clock->advanceTo(t + 89.9);
    EXPECT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::togglePBP);
    clock->advanceTo(t + 90);
    EXPECT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::confirming)
        << "latched: the split override was applied and awaits confirmation";
    EXPECT_EQ(wizard->step().behavior, PBPBehavior::latchedAtPlug);
}

TEST_F(ObservationTest, AMonitorThatOnlyRaisesInterruptsIsLatchedEvenWhenTheUserFinishes) {
    watchUltrawide();
    system->fireInterrupt();
    clock->advance(2.5);
    system->fireInterrupt();
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::confirming(PBPBehavior::latchedAtPlug));
    EXPECT_TRUE(controller->pendingConfirmation());
    EXPECT_FALSE(controller->switchPrompt()) << "interrupts during an observation never lead to an offer";
}

TEST_F(ObservationTest, NoSignalsAndAFinishedToggleAreJudgedByTheFactoryEDID) {
    watchUltrawide(); // its own EDID lacks the 1720×1440 half
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::confirming(PBPBehavior::fixedMissingSplit));
}

TEST_F(ObservationTest, NoSignalsAndAFinishedToggleOnAMonitorWithItsSplitIsFixedWithSplit) {
    watchSuperwide(); // lists 2560×1440 itself
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::fixedWithSplit));
    EXPECT_FALSE(controller->pendingConfirmation());
}

TEST_F(ObservationTest, WhenTheFactoryEDIDCannotBeToldTheVerdictIsLatched) {
    // Identified at 3440×1440 while the monitor shows its half: its own EDID
    // does not name the native, and no full-mode EDID is saved.
    system->attach("dcp-1", ultrawideHalf(), {split60}, split60);
    startSettled();
    wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    wizard->finishToggle();
    EXPECT_EQ(wizard->step().behavior, PBPBehavior::latchedAtPlug);
}

TEST_F(ObservationTest, SkippingTheToggleWithoutSignalsIsLatched) {
    watchSuperwide();
    wizard->skipToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::latchedAtPlug))
        << "the superwide needs no write: its EDID already lists the split";
}

TEST_F(ObservationTest, KeepingTheChangeFinishesTheWizardAndRevertingRevertsIt) {
    watchUltrawide();
    wizard->finishToggle();
    ASSERT_EQ(wizard->step().kind, IdentificationWizard::Step::Kind::confirming);
    controller->keep();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::fixedMissingSplit));
    EXPECT_EQ(wizardChanges, 2);

    // A second identification, this time reverted.
    const auto again = controller->startIdentification(DisplayID("dcp-1"));
    system->setOverride("dcp-1", std::nullopt);
    again->confirm({3440, 1440});
    again->finishToggle();
    ASSERT_EQ(again->step().kind, IdentificationWizard::Step::Kind::confirming);
    controller->revert();
    EXPECT_EQ(again->step(), IdentificationWizard::Step::reverted(PBPBehavior::fixedMissingSplit));
}

TEST_F(ObservationTest, AWizardThatIsGoneEndsItsObservation) {
    watchUltrawide();
    wizard.reset();
    EXPECT_FALSE(controller->isObservingPBP());
    clock->advance(100);
    EXPECT_FALSE(controller->pendingConfirmation()) << "no verdict for a gone wizard";
}

TEST_F(ObservationTest, StartingAnObservationForADisplayThatIsGoneMakesTheWizardUnavailable) {
    attachUltrawide();
    startSettled();
    wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->onChange = [this] { ++wizardChanges; };
    system->detach("dcp-1");
    wizard->confirm({3440, 1440});
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::displayUnavailable());
    EXPECT_EQ(wizardChanges, 1);
    EXPECT_FALSE(controller->isObservingPBP());
}

TEST(PBPObservation, TheVerdictTable) {
    PBPObservation o({}, DisplayID("d"), Bytes{1}, std::nullopt);
    // Nothing seen: latching, unless the user toggled and the monitor's own
    // EDID tells whether it carries the split.
    EXPECT_EQ(o.verdict(false, true), PBPBehavior::latchedAtPlug);
    EXPECT_EQ(o.verdict(true, std::nullopt), PBPBehavior::latchedAtPlug);
    EXPECT_EQ(o.verdict(true, true), PBPBehavior::fixedWithSplit);
    EXPECT_EQ(o.verdict(true, false), PBPBehavior::fixedMissingSplit);
    // An interrupt without a new EDID: the monitor reacted, but kept its EDID.
    o.interrupts = 1;
    EXPECT_EQ(o.verdict(true, true), PBPBehavior::latchedAtPlug);
    // A new EDID of its own: it switches, whatever else was seen.
    o.noteEDID(Bytes{2}, 10);
    for (const bool toggled : {false, true})
        for (const auto has : {std::optional<bool>(), std::optional(true), std::optional(false)})
            EXPECT_EQ(o.verdict(toggled, has), PBPBehavior::switchesOnToggle);
}
