// Acting on a monitor's PBP behaviour once it is known: the verdict saved,
// the split written where the monitor needs it, a needless override dropped.

#include "PolicyFixture.hpp"

#include <HalvoraCore/BehaviorAdoption.hpp>
#include <stdexcept>

using namespace ControllerTesting;

namespace {

const Bytes& superwidePBP() {
    return *EDIDKit::sampleMonitor("superwide-49")->pictureByPicture;
}

/// The controller as the adoption sees it: a split target it is told, and a
/// record of what it was asked to do.
class FakeAdoptionHost final : public BehaviorAdoption::Host {
public:
    /// What splitTarget answers; nothing: it throws notIdentified.
    std::optional<Bytes> target;
    /// What applySplit throws, if anything.
    std::optional<SplitError> applyFailure;

    std::vector<DisplayID> applied;
    int restorePasses = 0;
    int changes = 0;
    std::vector<SplitError> errors;

    Bytes splitTarget(const ExternalDisplay&) override {
        if (!target) throw SplitError::notIdentified();
        return *target;
    }
    void applySplit(const DisplayID& display) override {
        if (applyFailure) throw *applyFailure;
        applied.push_back(display);
    }
    void restoreSoon() override { ++restorePasses; }
    void changed() override { ++changes; }
    void report(const SplitError& error) override { errors.push_back(error); }
};

class BehaviorAdoptionTest : public PolicyTest {
protected:
    FakeAdoptionHost host;

    /// Adopts on the records as they are saved now.
    bool adopt(PBPBehavior behavior, const std::string& display = "dcp-1") {
        if (!monitors) loadRecords();
        return BehaviorAdoption(*monitors, writer, host).adopt(behavior, DisplayID(display));
    }
};

} // namespace

TEST_F(BehaviorAdoptionTest, AMonitorThatBringsItsOwnSplitHasItsSavedOverrideDroppedAndTakenOff) {
    DisplaySettings s(identityOf(superwideFull()), "DP-1", {5120, 1440});
    s.overrideEDID = superwidePBP();
    store->stored = {s};
    system->attach("dcp-1", superwideFull(), {{5120, 1440, 60}}, DisplayMode{5120, 1440, 60});
    system->setOverride("dcp-1", superwidePBP());
    EXPECT_TRUE(adopt(PBPBehavior::fixedWithSplit));
    EXPECT_EQ(store->stored[0].overrideEDID, std::nullopt);
    EXPECT_EQ(store->stored[0].behavior, PBPBehavior::fixedWithSplit);
    EXPECT_EQ(calls(), (std::vector<std::string>{"restoreFactoryEDID dcp-1"}));
    EXPECT_EQ(writer.lastOwnChange(), clock->now());
    EXPECT_EQ(host.restorePasses, 1) << "a restore pass follows";
    EXPECT_EQ(host.changes, 1);
}

TEST_F(BehaviorAdoptionTest, ASavedOverrideThatIsNotShownIsDroppedWithoutTouchingTheDisplay) {
    DisplaySettings s = {identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.overrideEDID = ultrawideSplit();
    store->stored = {s};
    attachUltrawide();
    EXPECT_TRUE(adopt(PBPBehavior::fixedWithSplit));
    EXPECT_EQ(store->stored[0].overrideEDID, std::nullopt);
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ(writer.lastOwnChange(), std::nullopt);
    EXPECT_EQ(host.restorePasses, 1);
}

TEST_F(BehaviorAdoptionTest, AMonitorWithItsOwnSplitAndNoOverrideOnlyHasItsBehaviourSaved) {
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    attachUltrawide();
    EXPECT_TRUE(adopt(PBPBehavior::fixedWithSplit));
    EXPECT_EQ(store->stored[0].behavior, PBPBehavior::fixedWithSplit);
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ(host.restorePasses, 0);
    EXPECT_EQ(host.changes, 1);
}

TEST_F(BehaviorAdoptionTest, ALatchingVerdictWhoseWriteFailsIsReportedAndKept) {
    attachUltrawide();
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    host.target = ultrawideSplit();
    host.applyFailure = SplitError::hardware(DisplayOperation::writeOverride, "port busy");
    EXPECT_FALSE(adopt(PBPBehavior::latchedAtPlug));
    EXPECT_EQ(host.errors, (std::vector<SplitError>{SplitError::hardware(
                               DisplayOperation::writeOverride, "port busy")}));
    EXPECT_EQ(store->stored[0].behavior, PBPBehavior::latchedAtPlug);
    EXPECT_TRUE(host.applied.empty()) << "no change awaits confirmation";
}

TEST_F(BehaviorAdoptionTest, AFactoryRestoreThatFailsIsReportedAndTheOverrideStillDropped) {
    DisplaySettings s = {identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.overrideEDID = ultrawideSplit();
    s.behavior = PBPBehavior::latchedAtPlug;
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    system->failRestore = std::make_exception_ptr(std::runtime_error("port busy"));
    EXPECT_TRUE(adopt(PBPBehavior::fixedWithSplit));
    EXPECT_EQ(host.errors, (std::vector<SplitError>{SplitError::hardware(
                               DisplayOperation::restoreFactory, "port busy")}));
    EXPECT_EQ(store->stored[0].overrideEDID, std::nullopt);
    EXPECT_EQ(writer.lastOwnChange(), clock->now()) << "the attempt counts as our own change";
    EXPECT_EQ(host.restorePasses, 1);
}

TEST_F(BehaviorAdoptionTest, AMonitorThatNeedsTheSplitHasItApplied) {
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    attachUltrawide();
    host.target = ultrawideSplit();
    EXPECT_TRUE(adopt(PBPBehavior::fixedMissingSplit));
    EXPECT_EQ(host.applied, std::vector<DisplayID>{DisplayID("dcp-1")});
    EXPECT_EQ(store->stored[0].behavior, PBPBehavior::fixedMissingSplit);
    EXPECT_EQ(host.changes, 0) << "the change that opens says so itself";
}

TEST_F(BehaviorAdoptionTest, AMonitorAlreadyShowingItsSplitTargetIsNotWrittenAgain) {
    DisplaySettings s = {identityOf(ultrawideFull()), "DP-1", {3440, 1440}};
    s.overrideEDID = ultrawideSplit();
    store->stored = {s};
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    host.target = ultrawideSplit();
    EXPECT_TRUE(adopt(PBPBehavior::latchedAtPlug));
    EXPECT_TRUE(host.applied.empty());
    EXPECT_EQ(store->stored[0].overrideEDID, ultrawideSplit());
}

TEST_F(BehaviorAdoptionTest, ASplitTargetThatCannotBeBuiltIsReported) {
    attachUltrawide();
    EXPECT_FALSE(adopt(PBPBehavior::fixedMissingSplit));
    EXPECT_EQ(host.errors, std::vector<SplitError>{SplitError::notIdentified()});
    EXPECT_TRUE(store->saves.empty()) << "an unknown monitor gets no record";
}

TEST_F(BehaviorAdoptionTest, AGoneDisplayCanOnlyBeAdoptedWhenItNeedsNoOverride) {
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    EXPECT_FALSE(adopt(PBPBehavior::latchedAtPlug, "dcp-9"));
    EXPECT_TRUE(adopt(PBPBehavior::fixedWithSplit, "dcp-9"));
    EXPECT_TRUE(store->saves.empty());
    EXPECT_EQ(host.changes, 0);
    EXPECT_TRUE(host.errors.empty());
}
