// A system that does not show the override as it was written: the restore
// pass must neither loop nor take the altered EDID for the monitor's own, and
// an override that came back with only its identity changed is still ours.

#include "ControllerFixture.hpp"

#include <EDIDKit/EDIDComparison.hpp>

using namespace ControllerTesting;

namespace {

/// What a system that stamps its own manufacture week hands back.
Bytes withAnotherWeek(const Bytes& written) {
    const EDIDKit::EDID edid(written);
    return edid.withManufactureWeek(static_cast<std::uint8_t>(edid.manufactureWeek() + 1)).bytes();
}

/// What a system that stamps its own serial number hands back.
Bytes withAnotherSerial(const Bytes& written) {
    const EDIDKit::EDID edid(written);
    return edid.withSerial(edid.serialNumber() + 1).bytes();
}

class RewriteLoopTest : public ControllerTest {
protected:
    void SetUp() override {
        DisplaySettings s = ultrawideSettings();
        s.overrideEDID = ultrawideSplit();
        s.factoryFullEDID = ultrawideFull();
        store->stored = {s};
        attachUltrawide();
        // Every write re-enumerates the display, which asks for another pass.
        system->onCall = [this](const TestDoubles::ScriptedDisplaySystem::Call& call) {
            if (call.operation == "applyEDIDOverride") clock->schedule(0.5, [this] { system->fireConfigurationChange(true); });
        };
    }
    long writes() const { return callCount("applyEDIDOverride dcp-1"); }
};

} // namespace

TEST_F(RewriteLoopTest, AnOverrideThatNeverShowsAsWrittenIsWrittenThreeTimesThenLeftAloneAndTheUserToldOnce) {
    system->alterWrites = withAnotherWeek;
    start();
    clock->advance(120);
    EXPECT_EQ(writes(), RewriteGuard::maxWrites);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].kind(), SplitError::Kind::overrideNotTaken);
    EXPECT_EQ(errorMessage(errors[0]).key, "error.overrideNotTaken");
    EXPECT_TRUE(controller->isRewriteStopped(DisplayID("dcp-1")));

    // Later passes (a wake, say) still leave it alone, and say nothing more.
    system->fireConfigurationChange(true);
    clock->advance(10);
    EXPECT_EQ(writes(), RewriteGuard::maxWrites);
    EXPECT_EQ(errors.size(), 1u);
}

TEST_F(RewriteLoopTest, TheAlteredEDIDIsNeverTakenForTheMonitorsOwn) {
    system->alterWrites = withAnotherWeek;
    start();
    clock->advance(120);
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull());
    EXPECT_EQ(store->stored[0].overrideEDID, ultrawideSplit());
}

TEST_F(RewriteLoopTest, AMonitorThatShowsTheOverrideAsWrittenIsNeverStoppedHoweverOftenItDropsIt) {
    start();
    // Six drops a minute, each answered by a write that shows as written.
    for (int i = 0; i < 10; ++i) {
        clock->advance(10);
        system->setOverride("dcp-1", std::nullopt); // the monitor drops the virtual EDID
        system->fireConfigurationChange(true);
    }
    clock->advance(5);
    EXPECT_EQ(writes(), 11);
    EXPECT_TRUE(errors.empty());
    EXPECT_FALSE(controller->isRewriteStopped(DisplayID("dcp-1")));
    EXPECT_EQ(system->overrideOn("dcp-1"), ultrawideSplit());
}

TEST_F(RewriteLoopTest, AReplugLetsAStoppedMonitorBeWrittenAgain) {
    system->alterWrites = withAnotherWeek;
    start();
    clock->advance(120);
    system->detach("dcp-1");
    system->fireConfigurationChange(true);
    clock->advance(5);
    system->attach("dcp-2", ultrawideFull(), {full60, qhd60, split60}, full60, "DP-1");
    system->fireConfigurationChange(true);
    clock->advance(3.2);
    EXPECT_EQ(callCount("applyEDIDOverride dcp-2"), 1);
    EXPECT_FALSE(controller->isRewriteStopped(DisplayID("dcp-2")));
}

TEST_F(RewriteLoopTest, TheUserActingLetsAStoppedMonitorBeWrittenAgain) {
    system->alterWrites = withAnotherWeek;
    start();
    clock->advance(120);
    ASSERT_TRUE(controller->isRewriteStopped(DisplayID("dcp-1")));
    controller->switchTo(ModeChoice::split, DisplayID("dcp-1"));
    EXPECT_FALSE(controller->isRewriteStopped(DisplayID("dcp-1")));
    system->fireConfigurationChange(false);
    clock->advance(3.2);
    EXPECT_EQ(writes(), RewriteGuard::maxWrites + 1);
}

TEST_F(RewriteLoopTest, QuitGivesTheFactoryEDIDBackToAnOverrideTheSystemAlteredBeyondRecognition) {
    system->alterWrites = withAnotherWeek;
    start();
    clock->advance(120);
    ASSERT_FALSE(EDIDKit::sameApartFromIdentity(*system->overrideOn("dcp-1"), ultrawideSplit()));
    controller->restoreForQuit();
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 1);
}

TEST_F(RewriteLoopTest, QuitStillRecognisesTheAlteredOverrideWhileAToolThatWritesNothingIsAbout) {
    system->alterWrites = withAnotherWeek;
    start();
    clock->advance(120);
    probe->present = {ConflictingTool::betterDisplay};
    controller->checkConflicts();
    ASSERT_EQ(controller->conflicts(), ConflictSet{ConflictingTool::betterDisplay});
    controller->restoreForQuit();
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 1);
}

TEST_F(RewriteLoopTest, QuitLeavesAnotherToolsEDIDWrittenOverOursWhileThatToolIsAbout) {
    system->alterWrites = withAnotherWeek;
    start();
    clock->advance(120);
    probe->present = {ConflictingTool::edidOverrideService};
    controller->checkConflicts();
    ASSERT_EQ(controller->conflicts(), ConflictSet{ConflictingTool::edidOverrideService});
    system->alterWrites = nullptr;
    system->setOverride("dcp-1", foreignEDIDFor(ultrawideFull()));
    controller->restoreForQuit();
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 0);
}

TEST_F(RewriteLoopTest, AnOverrideBackWithAnotherSerialNumberIsOursAndWrittenOnce) {
    system->alterWrites = withAnotherSerial;
    start();
    clock->advance(120);
    EXPECT_EQ(writes(), 1);
    EXPECT_TRUE(errors.empty());
    // Its record is found through the override, and nothing of it is taken
    // for the monitor's own EDID.
    const auto shown = *system->overrideOn("dcp-1");
    ASSERT_NE(shown, ultrawideSplit());
    ASSERT_EQ(store->stored.size(), 1u) << "no record of its own";
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull());
    EXPECT_EQ(store->stored[0].factorySplitEDID, std::nullopt);
    const auto states = controller->displayStates();
    ASSERT_EQ(states.size(), 1u);
    EXPECT_TRUE(states[0].isSplitApplied);
    EXPECT_EQ(states[0].native, (Resolution{3440, 1440}));
}

TEST_F(RewriteLoopTest, AnOverrideBackWithABrokenChecksumIsOursAndTakenAwayAtQuit) {
    system->alterWrites = [](const Bytes& written) {
        return EDIDKit::EDID(written).withBrokenChecksum().bytes();
    };
    start();
    clock->advance(120);
    EXPECT_EQ(writes(), 1);
    controller->restoreForQuit();
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 1);
}

TEST_F(RewriteLoopTest, TheModeIsStillRememberedOnAMonitorWhoseOverrideCameBackWithAnotherSerial) {
    system->alterWrites = withAnotherSerial;
    start();
    clock->advance(20);
    system->setCurrentMode("dcp-1", split60); // the user picks the split in System Settings
    system->fireConfigurationChange(false);
    clock->advance(3.2);
    EXPECT_EQ(store->stored[0].lastMode, split60);
}
