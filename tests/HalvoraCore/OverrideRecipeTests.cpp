// How the override that gives a monitor its split timing is built.

#include "SampleEDIDs.hpp"
#include <HalvoraCore/OverrideRecipe.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <gtest/gtest.h>

using namespace HalvoraCore;
using namespace ControllerTesting;
using EDIDKit::Bytes;
using EDIDKit::EDID;
using EDIDKit::SplitLayout;

namespace {

DisplaySettings record() {
    return {DisplayIdentity::of(EDID(ultrawideFull())), "DP-1", {3440, 1440}};
}

/// The record with both factory EDIDs captured.
DisplaySettings withFactoryEDIDs(DisplaySettings s, std::optional<PBPBehavior> behavior) {
    s.factoryFullEDID = ultrawideFull();
    s.factorySplitEDID = ultrawideHalf();
    s.behavior = behavior;
    return s;
}

/// The ultrawide attached, reporting `reported`, with `settings` as its record.
AttachedMonitor attached(const Bytes& reported, std::optional<DisplaySettings> settings,
                         std::optional<Bytes> ours = std::nullopt) {
    return {ExternalDisplay{DisplayID("dcp-1"), reported, "DP-1"}, EDID(reported),
            std::move(settings), DisplayIdentity::of(EDID(ultrawideFull())), std::move(ours)};
}

} // namespace

TEST(OverrideRecipe,
     TheSplitTargetIsTheMergeWhenBothFactoryEDIDsAreKnownElseTheReportedEDIDWithTheSplit) {
    DisplaySettings s = record();
    EXPECT_EQ(splitTarget(EDID(ultrawideFull()), s, SplitLayout::halves), ultrawideSplit());
    s.factoryFullEDID = ultrawideFull();
    s.factorySplitEDID = ultrawideHalf();
    EXPECT_EQ(splitTarget(EDID(ultrawideFull()), s, SplitLayout::halves),
              EDID(ultrawideFull()).mergingSplitVersion(EDID(ultrawideHalf())).bytes());
    s.native = {9000, 1440};
    s.factorySplitEDID.reset();
    try {
        splitTarget(EDID(ultrawideFull()), s, SplitLayout::halves);
        FAIL() << "a split beyond the panel was built";
    } catch (const SplitError& e) {
        EXPECT_EQ(e.kind(), SplitError::Kind::cannotAddSplit);
    }
}

TEST(OverrideRecipe, MergedOverrideNeedsBothFactoryEDIDsThatParse) {
    DisplaySettings s = withFactoryEDIDs(record(), std::nullopt);
    EXPECT_EQ(mergedOverride(s), EDID(ultrawideFull()).mergingSplitVersion(EDID(ultrawideHalf())).bytes());
    s.factorySplitEDID.reset();
    EXPECT_EQ(mergedOverride(s), std::nullopt);
    s.factorySplitEDID = Bytes(100, 0);
    EXPECT_EQ(mergedOverride(s), std::nullopt);
    s = withFactoryEDIDs(record(), PBPBehavior::switchesOnToggle);
    EXPECT_EQ(mergedOverride(s), std::nullopt);
}

TEST(OverrideRecipe, AMonitorWithoutARecordIsNotIdentified) {
    try {
        splitTarget(attached(ultrawideFull(), std::nullopt), SplitLayout::halves);
        FAIL() << "an override was built without a native resolution";
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::notIdentified());
    }
}

TEST(OverrideRecipe, AnAttachedMonitorsOverrideIsBuiltOnOursAsWrittenNotOnTheCopyHandedBack) {
    EXPECT_EQ(splitTarget(attached(ultrawideFull(), record()), SplitLayout::halves), ultrawideSplit());
    const EDID ours(ultrawideSplit());
    const Bytes handedBack = ours.withSerial(ours.serialNumber() + 1).bytes(); // another serial number
    const Bytes target = splitTarget(attached(handedBack, record(), ultrawideSplit()), SplitLayout::halves);
    EXPECT_EQ(target, EDID(ultrawideSplit()).addingSplit(SplitLayout::halves, {3440, 1440}).bytes());
    EXPECT_NE(target, EDID(handedBack).addingSplit(SplitLayout::halves, {3440, 1440}).bytes());
}

TEST(OverrideRecipe, TheSplitTargetIsTheMergedFactoryEDIDForLatchingOrUnobservedMonitors) {
    for (auto behavior : {std::optional<PBPBehavior>(), std::optional(PBPBehavior::latchedAtPlug)})
        EXPECT_EQ(splitTarget(attached(ultrawideFull(), withFactoryEDIDs(record(), behavior)),
                              SplitLayout::halves),
                  EDID(ultrawideFull()).mergingSplitVersion(EDID(ultrawideHalf())).bytes());
}

TEST(OverrideRecipe, TheSplitTargetOfAFixedMonitorIsBuiltFromItsCurrentEDID) {
    EXPECT_EQ(
        splitTarget(attached(ultrawideFull(), withFactoryEDIDs(record(), PBPBehavior::fixedMissingSplit)),
                    SplitLayout::halves),
        ultrawideSplit());
}
