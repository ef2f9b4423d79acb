// A monitor whose port hands our override back altered (another serial
// number, or a broken checksum) is known by its record through its whole
// life, exactly as on a port that hands it back as written.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

namespace {

struct Alteration {
    const char* name;
    std::function<Bytes(const Bytes&)> alter;
};

void PrintTo(const Alteration& alteration, std::ostream* out) {
    *out << alteration.name;
}

Bytes withAnotherSerial(const Bytes& written) {
    const EDIDKit::EDID edid(written);
    return edid.withSerial(edid.serialNumber() + 1).bytes();
}

Bytes withABrokenChecksum(const Bytes& written) {
    return EDIDKit::EDID(written).withBrokenChecksum().bytes();
}

class AlteringPortTest : public ControllerTest, public ::testing::WithParamInterface<Alteration> {
protected:
    std::shared_ptr<IdentificationWizard> wizard;

    void SetUp() override { system->alterWrites = GetParam().alter; }

    /// The ultrawide's one record, as saved.
    const DisplaySettings& record() const {
        EXPECT_EQ(store->stored.size(), 1u) << "one monitor, one record";
        return store->stored.back();
    }
    DisplayState state() {
        const auto states = controller->displayStates();
        EXPECT_EQ(states.size(), 1u);
        return states.empty() ? DisplayState{} : states[0];
    }

    /// Identifies the latching ultrawide (the user toggles PBP and the
    /// monitor only raises an interrupt) and lets its split wait for the user.
    void identifyUntilConfirming() {
        attachUltrawide();
        startSettled();
        wizard = controller->startIdentification(DisplayID("dcp-1"));
        wizard->confirm({3440, 1440});
        system->fireInterrupt();
        wizard->finishToggle();
        ASSERT_EQ(wizard->step(), IdentificationWizard::Step::confirming(PBPBehavior::latchedAtPlug));
        ASSERT_NE(system->overrideOn("dcp-1"), ultrawideSplit()) << "the port altered what it was given";
    }
    void identifyAndKeep() {
        identifyUntilConfirming();
        clock->advance(4);
        controller->keep();
        clock->advance(10);
    }
    long writes() const { return callCount("applyEDIDOverride dcp-1"); }
};

std::string nameOf(const ::testing::TestParamInfo<Alteration>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Ports, AlteringPortTest,
                         ::testing::Values(Alteration{"AnotherSerial", withAnotherSerial},
                                           Alteration{"ABrokenChecksum", withABrokenChecksum}),
                         nameOf);

} // namespace

TEST_P(AlteringPortTest, WhileTheSplitWaitsForConfirmationTheMenuShowsTheIdentifiedMonitor) {
    identifyUntilConfirming();
    const auto s = state();
    EXPECT_EQ(s.native, (Resolution{3440, 1440}));
    EXPECT_TRUE(s.isSplitApplied);
    EXPECT_EQ(s.behavior, PBPBehavior::latchedAtPlug);
}

TEST_P(AlteringPortTest, KeepingSavesTheOverrideAsWrittenUnderTheMonitorsOwnRecord) {
    identifyUntilConfirming();
    controller->keep();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::latchedAtPlug));
    EXPECT_EQ(record().identity, identityOf(ultrawideFull()));
    EXPECT_EQ(record().overrideEDID, ultrawideSplit()) << "what was written, not what the port handed back";
    EXPECT_EQ(record().lastMode, full60);
    EXPECT_EQ(record().factoryFullEDID, ultrawideFull());
}

TEST_P(AlteringPortTest, KeepSavesUnderTheRecordTheChangeWasMadeForWhateverThePortReportsThen) {
    identifyUntilConfirming();
    system->setOverride("dcp-1", withAnotherSerial(withAnotherSerial(ultrawideSplit())));
    controller->keep();
    EXPECT_EQ(record().identity, identityOf(ultrawideFull()));
    EXPECT_EQ(record().overrideEDID, ultrawideSplit());
}

TEST_P(AlteringPortTest, TheMenuAModeSwitchAndModeMemoryWorkOnTheKeptSplit) {
    identifyAndKeep();
    auto s = state();
    EXPECT_EQ(s.native, (Resolution{3440, 1440}));
    EXPECT_EQ(s.split, (Resolution{1720, 1440}));
    EXPECT_TRUE(s.isSplitApplied);
    EXPECT_EQ(s.current, ModeChoice::full);
    controller->switchTo(ModeChoice::split, DisplayID("dcp-1"));
    EXPECT_EQ(record().lastMode, split60);
    EXPECT_EQ(state().current, ModeChoice::split);
    // A mode the user picks elsewhere, once things have settled, is remembered.
    clock->advance(20);
    system->setCurrentMode("dcp-1", qhd60);
    system->fireConfigurationChange(false);
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(record().lastMode, qhd60);
}

TEST_P(AlteringPortTest, AReplugWritesTheKeptOverrideOnceAndPutsTheModeBack) {
    identifyAndKeep();
    controller->switchTo(ModeChoice::split, DisplayID("dcp-1"));
    clock->advance(20);
    system->detach("dcp-1");
    system->fireConfigurationChange(true);
    clock->advance(2);
    system->attach("dcp-2", ultrawideFull(), {full60, qhd60, split60}, full60, "DP-1");
    system->calls.clear();
    system->fireConfigurationChange(true);
    clock->advance(120);
    EXPECT_EQ(calls(), (std::vector<std::string>{"applyEDIDOverride dcp-2", "setMode dcp-2 1720×1440@60"}));
    EXPECT_EQ(system->calls[0].edid, ultrawideSplit());
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(record().overrideEDID, ultrawideSplit());
    EXPECT_EQ(record().lastMode, split60);
}

TEST_P(AlteringPortTest, SleepAndWakeLeaveTheKeptSplitAlone) {
    identifyAndKeep();
    const auto before = store->stored;
    system->calls.clear();
    system->fireSleep(true);
    clock->advance(60);
    system->fireSleep(false);
    system->fireConfigurationChange(true);
    clock->advance(30);
    EXPECT_TRUE(system->calls.empty()) << "the override on the port is ours";
    EXPECT_EQ(store->stored, before);
    EXPECT_TRUE(state().isSplitApplied);
}

TEST_P(AlteringPortTest, QuitGivesTheFactoryEDIDBackAndTheNextLaunchRestoresTheSplit) {
    identifyAndKeep();
    const auto kept = store->stored;
    controller->restoreForQuit();
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt);
    controller.reset();
    store->stored = kept;
    system->calls.clear();
    start();
    clock->advance(120);
    EXPECT_EQ(writes(), 1);
    EXPECT_EQ(system->calls[0].edid, ultrawideSplit());
    EXPECT_EQ(store->stored, kept) << "the same settings as before quitting";
    EXPECT_TRUE(state().isSplitApplied);
    EXPECT_EQ(state().native, (Resolution{3440, 1440}));
}

TEST_P(AlteringPortTest, AFactoryResetForgetsTheOverrideOfTheOneRecord) {
    identifyAndKeep();
    controller->restoreFactory();
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt);
    EXPECT_EQ(record().identity, identityOf(ultrawideFull()));
    EXPECT_EQ(record().overrideEDID, std::nullopt);
    EXPECT_EQ(record().lastMode, std::nullopt);
    clock->advance(30);
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt) << "nothing comes back by itself";
    EXPECT_FALSE(state().isSplitApplied);
    EXPECT_EQ(state().native, (Resolution{3440, 1440}));
}

TEST_P(AlteringPortTest, IdentifyingAgainWithTheSplitOnNeitherDuplicatesNorRenamesTheRecord) {
    identifyAndKeep();
    const auto kept = record();
    system->calls.clear();
    const auto again = controller->startIdentification(DisplayID("dcp-1"));
    ASSERT_EQ(again->step().kind, IdentificationWizard::Step::Kind::chooseNative);
    again->confirm({3440, 1440});
    EXPECT_EQ(record().identity, kept.identity);
    EXPECT_EQ(record().factoryFullEDID, ultrawideFull()) << "our override is never the monitor's own EDID";
    again->skipToggle();
    EXPECT_EQ(again->step(), IdentificationWizard::Step::finished(PBPBehavior::latchedAtPlug));
    EXPECT_FALSE(controller->pendingConfirmation()) << "the split is on already";
    EXPECT_TRUE(system->calls.empty());
    EXPECT_EQ(record().overrideEDID, ultrawideSplit());
}

TEST_P(AlteringPortTest, AWizardLeftOpenFollowsTheMonitorToItsNewPortThroughItsOverride) {
    identifyAndKeep();
    const auto again = controller->startIdentification(DisplayID("dcp-1"));
    system->detach("dcp-1");
    system->attach("dcp-2", ultrawideFull(), {full60, qhd60, split60}, full60, "DP-2");
    system->setOverride("dcp-2", GetParam().alter(ultrawideSplit()));
    again->recheck();
    EXPECT_EQ(again->step().kind, IdentificationWizard::Step::Kind::chooseNative);
    again->confirm({3440, 1440});
    EXPECT_EQ(record().port, "DP-2");
    EXPECT_TRUE(controller->isObservingPBP());
}

TEST_P(AlteringPortTest, AnObservationStartedOnTheHandedBackOverrideTakesTheMonitorsFirstOwnEDIDAsItsBaseline) {
    identifyAndKeep();
    const auto again = controller->startIdentification(DisplayID("dcp-1"));
    again->confirm({3440, 1440});
    ASSERT_TRUE(controller->isObservingPBP());
    // The override goes and the monitor shows its own EDID: no change of its
    // own, since the handed-back override said nothing about the monitor.
    system->setOverride("dcp-1", std::nullopt);
    system->fireConfigurationChange(true);
    clock->advance(SplitController::restoreDebounce);
    ASSERT_TRUE(controller->isObservingPBP());
    again->finishToggle();
    EXPECT_EQ(again->step(), IdentificationWizard::Step::confirming(PBPBehavior::fixedMissingSplit))
        << "toggled without the monitor changing its EDID";
}
