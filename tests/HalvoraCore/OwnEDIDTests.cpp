// An EDID Halvora Pro wrote is never taken for the monitor's own, and an
// override is only ever created by the user keeping one.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

using Calls = std::vector<std::string>;
using Kind = IdentificationWizard::Step::Kind;

TEST_F(ControllerTest, TheSavedOverrideOnTheDisplayIsNeverCapturedAsTheFactoryEDID) {
    attachUltrawideWithSplitKept(PBPBehavior::latchedAtPlug);
    startSettled();
    inspect().captureFactoryEDID(*inspect().display(DisplayID("dcp-1")));
    EXPECT_EQ(store->stored[0].factoryFullEDID, std::nullopt);
    EXPECT_EQ(store->stored[0].factorySplitEDID, std::nullopt);
    EXPECT_TRUE(store->saves.empty());
}

TEST_F(ControllerTest, APendingOverrideIsNeverCapturedAsTheFactoryEDID) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    ASSERT_EQ(store->stored[0].factoryFullEDID, ultrawideFull()) << "captured at launch";
    controller->applySplit(DisplayID("dcp-1"));
    inspect().confirmNative({3440, 1440}, DisplayID("dcp-1"));
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull())
        << "the display shows the pending change, not its own EDID";
}

TEST_F(ControllerTest, AnOverrideRebuiltFromTheFactoryEDIDIsRecognisedAsOursAndLookedPast) {
    // The record lost its override (say, the file was restored from a backup)
    // while the port still carries the split built from the factory EDID.
    DisplaySettings s = ultrawideSettings();
    s.factoryFullEDID = ultrawideFull();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    startSettled();
    EXPECT_TRUE(inspect().isOwnEDID(ultrawideSplit(), store->stored[0]));
    EXPECT_FALSE(inspect().isOwnEDID(ultrawideFull(), store->stored[0])) << "the monitor's own";
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull()) << "not replaced by our split";
    EXPECT_EQ(inspect().factoryHasSplit(DisplayID("dcp-1")), false)
        << "asked of the monitor's own EDID";
}

TEST_F(ControllerTest, TheMergedOverrideIsRecognisedAsOursButTheFactoryEDIDsAreNot) {
    DisplaySettings s = ultrawideSettings();
    s.factoryFullEDID = ultrawideFull();
    s.factorySplitEDID = ultrawideHalf();
    startSettled();
    EXPECT_TRUE(inspect().isOwnEDID(ultrawideMerged(), s));
    EXPECT_FALSE(inspect().isOwnEDID(ultrawideFull(), s));
    EXPECT_FALSE(inspect().isOwnEDID(ultrawideHalf(), s));
    EXPECT_FALSE(inspect().isOwnEDID(ultrawideSplit(), std::nullopt))
        << "without a record only a pending change is ours";
}

TEST_F(ControllerTest, IdentifyingAgainWithTheSplitOnScreenKeepsTheSplit) {
    // A fixed monitor without the split in its own EDID, identified and kept
    // earlier; the user identifies it again and reports the toggling done.
    DisplaySettings s = ultrawideSettings();
    s.overrideEDID = ultrawideSplit();
    s.behavior = PBPBehavior::fixedMissingSplit;
    s.factoryFullEDID = ultrawideFull();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull())
        << "our override is not the factory EDID";
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::fixedMissingSplit));
    EXPECT_EQ(store->stored[0].overrideEDID, ultrawideSplit()) << "the split stays saved";
    EXPECT_EQ(system->overrideOn("dcp-1"), ultrawideSplit()) << "and on the display";
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 0);
}

TEST_F(ControllerTest, IdentifyingAgainWithoutASavedFactoryEDIDCannotTellAndKeepsTheSplit) {
    attachUltrawideWithSplitKept(PBPBehavior::latchedAtPlug);
    startSettled();
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    EXPECT_EQ(inspect().factoryHasSplit(DisplayID("dcp-1")), std::nullopt)
        << "the split on screen is ours and no factory EDID is saved";
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::latchedAtPlug));
    EXPECT_EQ(system->overrideOn("dcp-1"), ultrawideSplit());
    EXPECT_EQ(store->stored[0].overrideEDID, ultrawideSplit());
}

TEST_F(ControllerTest, TheRestorePassNeverCreatesAnOverrideTheUserDidNotKeep) {
    // Both factory EDIDs are known (the monitor was watched while the user
    // toggled PBP, then the window was cancelled): nothing was ever kept.
    DisplaySettings s = ultrawideSettings();
    s.factoryFullEDID = ultrawideFull();
    s.factorySplitEDID = ultrawideHalf();
    store->stored = {s};
    attachUltrawide();
    start();
    clock->advance(30);
    system->fireConfigurationChange(true);
    clock->advance(30);
    EXPECT_EQ(store->stored[0].overrideEDID, std::nullopt);
    EXPECT_EQ(callCount("applyEDIDOverride dcp-1"), 0);
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt);
}

TEST_F(ControllerTest,
       TheRestorePassReplacesASavedOverrideWithTheMergedOneOnceBothFactoryEDIDsAreKnown) {
    // Kept while only the full EDID was known; the monitor is now plugged in
    // with PBP on, showing its own half EDID.
    DisplaySettings s = ultrawideKeptBeforeItsHalfWasKnown();
    store->stored = {s};
    system->attach("dcp-1", ultrawideHalf(), {split60}, split60, "DP-1");
    start();
    clock->advanceTo(T + 3);
    EXPECT_EQ(store->stored[0].factorySplitEDID, ultrawideHalf());
    EXPECT_EQ(store->stored[0].overrideEDID, ultrawideMerged());
    ASSERT_EQ(calls(), (Calls{"applyEDIDOverride dcp-1"}));
    EXPECT_EQ(system->calls[0].edid, ultrawideMerged());
}

TEST_F(ControllerTest, AFactoryResetLastsOnALatchingMonitorWhoseFactoryEDIDsAreKnown) {
    DisplaySettings s = ultrawideSettings();
    s.behavior = PBPBehavior::latchedAtPlug;
    s.factoryFullEDID = ultrawideFull();
    s.factorySplitEDID = ultrawideHalf();
    s.overrideEDID = ultrawideMerged();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideMerged());
    startSettled();
    controller->restoreFactory();
    system->fireConfigurationChange(true); // the port re-enumerates with its own EDID
    clock->advance(30);
    system->fireInterrupt();
    clock->advance(30);
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt);
    EXPECT_EQ(store->stored[0].overrideEDID, std::nullopt);
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull()) << "what was learnt stays";
    EXPECT_EQ(calls(), (Calls{"restoreFactoryEDID dcp-1"}));
}
