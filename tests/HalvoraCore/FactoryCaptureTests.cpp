// Keeping a monitor's own EDIDs in its record, and telling them from ours.

#include "PolicyFixture.hpp"

#include <HalvoraCore/FactoryCapture.hpp>

using namespace ControllerTesting;

namespace {

/// What the pending change and the settling ask of the controller: nothing
/// these cases reach.
class IdleChangeHost final : public PendingChange::Host, public Settling::Host {
public:
    void restoreMode(const std::optional<DisplayMode>&, const DisplayID&) override {}
    void changeOpened() override {}
    void changed() override {}
    void report(const SplitError&) override {}
};

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
