// An EDID Halvora Pro wrote is never taken for the monitor's own, and an
// override is only ever created by the user keeping one.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

using Calls = std::vector<std::string>;
using Kind = IdentificationWizard::Step::Kind;

TEST_F(ControllerTest, APendingOverrideIsNeverCapturedAsTheFactoryEDID) {
    store->stored = {ultrawideSettings()};
    attachUltrawide();
    startSettled();
    ASSERT_EQ(store->stored[0].factoryFullEDID, ultrawideFull()) << "captured at launch";
    controller->applySplit(DisplayID("dcp-1"));
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440}); // captures what the display shows
    ASSERT_EQ(wizard->step(), IdentificationWizard::Step::togglePBP());
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
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull()) << "not replaced by our split";
    EXPECT_EQ(store->stored[0].overrideEDID, std::nullopt) << "nor saved as an override";
    // Identified again and toggled without a change: a fixed monitor whose own
    // EDID lacks the split, as its saved factory EDID tells, not our split.
    const auto wizard = controller->startIdentification(DisplayID("dcp-1"));
    wizard->confirm({3440, 1440});
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull()) << "not replaced by our split";
    wizard->finishToggle();
    EXPECT_EQ(wizard->step(), IdentificationWizard::Step::finished(PBPBehavior::fixedMissingSplit))
        << "the split is on the display already";
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
    EXPECT_EQ(store->stored[0].factoryFullEDID, std::nullopt) << "the split on screen is ours";
    wizard->finishToggle();
    // Whether the monitor's own EDID has the split cannot be told: toggled
    // without a change, it is taken to latch (it would be fixed if it could).
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
