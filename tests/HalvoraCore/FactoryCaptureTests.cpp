// Keeping a monitor's own EDIDs in its record, and telling them from ours.

#include "PolicyFixture.hpp"

#include <HalvoraCore/FactoryCapture.hpp>

using namespace ControllerTesting;

namespace {

class FactoryCaptureTest : public PolicyTest {
protected:
    ModeMemory modes;
    IdleChangeHost host;
    Settling settling{timers, writer, modes, host};
    std::optional<PendingChange> pending;
    std::optional<FactoryCapture> capture;

    /// Loads the records as they are saved now.
    void start() {
        loadRecords();
        pending.emplace(timers, *monitors, writer, settling, host);
        capture.emplace(*monitors, *pending, guard, EDIDKit::SplitLayout::halves);
    }

    AttachedMonitor monitor(const std::string& id = "dcp-1") const {
        return *monitors->monitor(DisplayID(id));
    }
};

} // namespace

TEST_F(FactoryCaptureTest, FactoryHasSplitFallsBackToTheSavedFactoryEDIDWhileTheOverrideIsOn) {
    DisplaySettings s{identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.overrideEDID = ultrawideSplit();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    start();
    EXPECT_EQ(capture->factoryHasSplit(monitor()), std::nullopt) << "no factory EDID saved";
    monitors->update(monitor(), std::nullopt,
                     [](DisplaySettings& x) { x.factoryFullEDID = ultrawideFull(); });
    EXPECT_EQ(capture->factoryHasSplit(monitor()), false);
}

TEST_F(FactoryCaptureTest, CaptureFactoryEDIDRemembersTheFullAndTheSplitModeEDID) {
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    attachUltrawide();
    start();
    capture->capture(monitor());
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull());
    const auto saves = store->saves.size();
    capture->capture(monitor());
    EXPECT_EQ(store->saves.size(), saves) << "an equal EDID is not saved again";
    system->setFactoryEDID("dcp-1", ultrawideHalf());
    capture->capture(monitor());
    EXPECT_EQ(store->stored[0].factorySplitEDID, ultrawideHalf());
    EXPECT_EQ(store->stored[0].factoryFullEDID, ultrawideFull());
}

TEST_F(FactoryCaptureTest, WhatAPortReportsAfterAWriteOfThisRunIsNeverTakenForTheMonitorsOwn) {
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    attachUltrawide();
    start();
    writer.writeOverride(ultrawideSplit(), DisplayID("dcp-1"));
    system->setOverride("dcp-1", std::nullopt);
    capture->capture(monitor());
    EXPECT_EQ(store->stored[0].factoryFullEDID, std::nullopt);
    EXPECT_TRUE(store->saves.empty());
}

TEST_F(FactoryCaptureTest, TheSavedOverrideOnTheDisplayIsNeverCapturedAsTheFactoryEDID) {
    DisplaySettings s{identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.overrideEDID = ultrawideSplit();
    s.behavior = PBPBehavior::latchedAtPlug;
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    start();
    capture->capture(monitor());
    EXPECT_EQ(store->stored[0].factoryFullEDID, std::nullopt);
    EXPECT_EQ(store->stored[0].factorySplitEDID, std::nullopt);
    EXPECT_TRUE(store->saves.empty());
}

TEST_F(FactoryCaptureTest,
       AnOverrideRebuiltFromTheFactoryEDIDIsOursAndTheSplitIsAskedOfTheMonitorsOwn) {
    // The record lost its override while the port still carries the split
    // built from the factory EDID.
    DisplaySettings s{identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.factoryFullEDID = ultrawideFull();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    start();
    EXPECT_TRUE(capture->isOwnEDID(ultrawideSplit(), store->stored[0]));
    EXPECT_FALSE(capture->isOwnEDID(ultrawideFull(), store->stored[0])) << "the monitor's own";
    EXPECT_EQ(capture->factoryHasSplit(monitor()), false) << "asked of the monitor's own EDID";
}

TEST_F(FactoryCaptureTest, TheMergedOverrideIsOursButTheFactoryEDIDsAreNot) {
    DisplaySettings s{identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.factoryFullEDID = ultrawideFull();
    s.factorySplitEDID = ultrawideHalf();
    start();
    EXPECT_TRUE(capture->isOwnEDID(ultrawideMerged(), s));
    EXPECT_FALSE(capture->isOwnEDID(ultrawideFull(), s));
    EXPECT_FALSE(capture->isOwnEDID(ultrawideHalf(), s));
    EXPECT_FALSE(capture->isOwnEDID(ultrawideSplit(), std::nullopt))
        << "without a record only a pending change is ours";
}

TEST_F(FactoryCaptureTest, TheSavedOverrideHandedBackWithAnotherSerialNumberIsOurs) {
    DisplaySettings s{identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.overrideEDID = ultrawideSplit();
    start();
    const EDIDKit::EDID written(ultrawideSplit());
    EXPECT_TRUE(capture->isOwnEDID(written.withSerial(written.serialNumber() + 1).bytes(), s));
}

TEST_F(FactoryCaptureTest, FactoryHasSplitReadsTheMonitorsOwnFullEDID) {
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    attachUltrawide();
    start();
    EXPECT_EQ(capture->factoryHasSplit(monitor()), false);
}

TEST_F(FactoryCaptureTest, ASuperwidesFullEDIDIsNeverSavedAsItsPictureByPictureEDID) {
    // Its base block lists 2560×1440 first; DisplayID prefers the whole 5120×1440.
    store->stored = {DisplaySettings(identityOf(superwideFull()), "DP-1", {5120, 1440})};
    system->attach("dcp-1", superwideFull(), {{5120, 1440, 60}, {2560, 1440, 60}},
                   DisplayMode{5120, 1440, 60});
    start();
    capture->capture(monitor());
    capture->capture(monitor());
    EXPECT_EQ(store->stored[0].factoryFullEDID, superwideFull());
    EXPECT_EQ(store->stored[0].factorySplitEDID, std::nullopt);
    // Its own picture-by-picture EDID is.
    system->setFactoryEDID("dcp-1", *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture);
    capture->capture(monitor());
    EXPECT_EQ(store->stored[0].factorySplitEDID,
              EDIDKit::sampleMonitor("superwide-49")->pictureByPicture);
}
