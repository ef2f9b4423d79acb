// Watching a monitor while the user toggles PBP: what counts as the
// monitor's own EDID, and which identification the observation reports to.

#include "PolicyFixture.hpp"

#include <HalvoraCore/IdentificationProgress.hpp>
#include <HalvoraCore/PBPObserver.hpp>

using namespace ControllerTesting;

namespace {

/// Our override with another serial number stamped on it, as some ports hand it back.
Bytes withAnotherSerial(const Bytes& written) {
    const EDIDKit::EDID edid(written);
    return edid.withSerial(edid.serialNumber() + 1).bytes();
}

class RecordingProgress final : public IdentificationProgress {
public:
    void displayUnavailable() override {}
    void judged(PBPBehavior verdict, Outcome) override { verdicts.push_back(verdict); }
    void confirmationEnded(bool) override {}
    std::vector<PBPBehavior> verdicts;
};

/// Adopts every verdict; the monitor's own EDID lacks the split.
class AdoptingHost final : public PBPObserver::Host {
public:
    std::optional<bool> factoryHasSplit(const DisplayID&) override { return false; }
    bool adopt(PBPBehavior, const DisplayID&) override { return true; }
};

class PBPObserverTest : public PolicyTest {
protected:
    ModeMemory modes;
    IdleChangeHost changeHost;
    Settling settling{timers, writer, modes, changeHost};
    AdoptingHost host;
    std::optional<PendingChange> pending;
    std::optional<PBPObserver> observer;

    /// The ultrawide with its split kept, its port carrying `onPort`.
    void attachWithSplitKept(const Bytes& onPort) {
        DisplaySettings s{identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
        s.overrideEDID = ultrawideSplit();
        store->stored = {s};
        attachUltrawide();
        system->setOverride("dcp-1", onPort);
        loadRecords();
        pending.emplace(timers, *monitors, writer, settling, changeHost);
        observer.emplace(timers, *monitors, *pending, host);
    }

    void begin(const std::shared_ptr<RecordingProgress>& progress) {
        observer->begin(progress, DisplayID("dcp-1"), *monitors->reportedEDID(DisplayID("dcp-1")),
                        ultrawideSplit());
    }

    void expectFirstOwnEDIDOnlySetsTheBaseline(const Bytes& onPort) {
        attachWithSplitKept(onPort);
        const auto progress = std::make_shared<RecordingProgress>();
        begin(progress);
        ASSERT_TRUE(observer->active());
        EXPECT_EQ(observer->active()->factoryEDID, std::nullopt) << "our override says nothing";
        // The override goes and the monitor shows its own EDID: no toggle.
        system->setOverride("dcp-1", std::nullopt);
        observer->noteReportedEDID();
        const auto watched = observer->active();
        ASSERT_TRUE(watched);
        EXPECT_EQ(watched->factoryEDID, ultrawideFull());
        EXPECT_FALSE(watched->edidChanged);
        EXPECT_EQ(watched->toggles, 0);
        EXPECT_EQ(clock->pendingCount(), 1u)
            << "only the time limit: no judgement follows a signal";
    }
};

} // namespace

TEST_F(PBPObserverTest, StartedOnOurOverrideTheMonitorsFirstOwnEDIDOnlySetsTheBaseline) {
    expectFirstOwnEDIDOnlySetsTheBaseline(ultrawideSplit());
}

TEST_F(PBPObserverTest,
       StartedOnOurOverrideHandedBackWithAnotherSerialTheFirstOwnEDIDOnlySetsTheBaseline) {
    expectFirstOwnEDIDOnlySetsTheBaseline(withAnotherSerial(ultrawideSplit()));
}

TEST_F(PBPObserverTest, ANewObservationReportsToItsOwnIdentificationOnly) {
    attachWithSplitKept(ultrawideSplit());
    const auto first = std::make_shared<RecordingProgress>();
    const auto second = std::make_shared<RecordingProgress>();
    begin(first);
    begin(second);
    ASSERT_TRUE(observer->active());
    EXPECT_EQ(observer->active()->wizard.lock(), second);
    EXPECT_TRUE(observer->isReportingTo(*second));
    EXPECT_FALSE(observer->isReportingTo(*first));
    observer->finish(true);
    EXPECT_TRUE(first->verdicts.empty());
    EXPECT_EQ(second->verdicts, std::vector<PBPBehavior>{PBPBehavior::fixedMissingSplit});
}

TEST_F(PBPObserverTest, AnObservationWhoseIdentificationIsGoneEnds) {
    attachWithSplitKept(ultrawideSplit());
    auto progress = std::make_shared<RecordingProgress>();
    begin(progress);
    progress.reset();
    EXPECT_EQ(observer->active(), nullptr);
    EXPECT_EQ(clock->pendingCount(), 0u) << "its time limit is cancelled";
}
