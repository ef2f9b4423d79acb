// The saved records as a value: lookups, updates that return new records,
// the user's reset, and the pure rules over one record.

#include <HalvoraCore/SettingsRecords.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <EDIDKit/SampleMonitors.hpp>

#include <gtest/gtest.h>

using namespace HalvoraCore;
using EDIDKit::Bytes;
using EDIDKit::EDID;
using EDIDKit::SplitLayout;

namespace {

const Bytes& full() { return EDIDKit::sampleMonitor("ultrawide-34")->full; }
const Bytes& half() { return *EDIDKit::sampleMonitor("ultrawide-34")->pictureByPicture; }
const Bytes& other() { return EDIDKit::sampleMonitor("superwide-49")->full; }
Bytes split() { return EDID(full()).addingSplit(SplitLayout::halves, {3440, 1440}).bytes(); }

DisplaySettings record() { return {DisplayIdentity::of(EDID(full())), "DP-1", {3440, 1440}}; }

} // namespace

TEST(SettingsRecords, AnUpdateReturnsNewRecordsWithTheChangedOneLastAndLeavesTheOldAsTheyWere) {
    DisplaySettings superwide(DisplayIdentity::of(EDID(other())), std::nullopt, {5120, 1440});
    const SettingsRecords before({record(), superwide});
    const auto after = before.updated(record().identity, std::nullopt, std::nullopt,
                                      [](DisplaySettings& s) { s.behavior = PBPBehavior::latchedAtPlug; });
    ASSERT_TRUE(after);
    ASSERT_EQ(after->list().size(), 2u);
    EXPECT_EQ(after->list()[0], superwide);
    EXPECT_EQ(after->list()[1].behavior, PBPBehavior::latchedAtPlug);
    EXPECT_EQ(after->list()[1].port, "DP-1") << "an unknown port leaves the saved one";
    EXPECT_EQ(before.list()[0], record()) << "the records it was made from are unchanged";
}

TEST(SettingsRecords, AnUnknownMonitorGetsARecordOnlyWithANativeResolution) {
    const SettingsRecords none;
    EXPECT_FALSE(none.updated(record().identity, "DP-2", std::nullopt, [](DisplaySettings&) {}));
    const auto created =
        none.updated(record().identity, "DP-2", EDIDKit::Resolution{3440, 1440}, [](DisplaySettings&) {});
    ASSERT_TRUE(created);
    EXPECT_EQ(created->list(), (std::vector<DisplaySettings>{{DisplayIdentity::of(EDID(full())), "DP-2", {3440, 1440}}}));
}

TEST(SettingsRecords, ShowsOverrideAllowsForAnotherSerialNumberButNotForAnotherEDID) {
    DisplaySettings kept = record();
    kept.overrideEDID = split();
    const EDID splitEDID(split());
    const Bytes restamped = splitEDID.withSerial(splitEDID.serialNumber() ^ 0x5A).bytes();
    EXPECT_TRUE(showsOverride(restamped, kept));
    EXPECT_FALSE(showsOverride(full(), kept));
}

TEST(SettingsRecords, TheResetForgetsOverridesAndModesExceptOnMonitorsThatCouldNotBeReset) {
    DisplaySettings a = record();
    a.overrideEDID = split();
    a.lastMode = DisplayMode{1720, 1440, 60};
    a.factoryFullEDID = full();
    DisplaySettings b(DisplayIdentity::of(EDID(other())), std::nullopt, {5120, 1440}, Bytes(other()));
    const auto reset = SettingsRecords({a, b}).reset({b.identity});
    EXPECT_EQ(reset.list()[0].overrideEDID, std::nullopt);
    EXPECT_EQ(reset.list()[0].lastMode, std::nullopt);
    EXPECT_EQ(reset.list()[0].factoryFullEDID, full()) << "what the monitor itself reported stays";
    EXPECT_EQ(reset.list()[1], b);
}

TEST(SettingsRecords, OverridesRebuiltFromTheFactoryEDIDsAreOursButTheFactoryEDIDsNever) {
    DisplaySettings s = record();
    s.factoryFullEDID = full();
    EXPECT_TRUE(isOverrideFor(split(), s, SplitLayout::halves));
    EXPECT_FALSE(isOverrideFor(full(), s, SplitLayout::halves));
    s.factorySplitEDID = split(); // a monitor whose own split EDID is what we would build
    EXPECT_FALSE(isOverrideFor(split(), s, SplitLayout::halves));
}

TEST(SettingsRecords, TheFactorySlotIsFullForTheNativeEDIDAndSplitForOnePreferringTheHalf) {
    DisplaySettings s = record();
    EXPECT_EQ(factorySlotFor(EDID(full()), s, SplitLayout::halves), FactorySlot::full);
    EXPECT_EQ(factorySlotFor(EDID(half()), s, SplitLayout::halves), FactorySlot::split);
    s.factoryFullEDID = full();
    s.factorySplitEDID = half();
    EXPECT_EQ(factorySlotFor(EDID(full()), s, SplitLayout::halves), std::nullopt) << "saved already";
    EXPECT_EQ(factorySlotFor(EDID(half()), s, SplitLayout::halves), std::nullopt);
    EXPECT_EQ(factorySlotFor(EDID(other()), record(), SplitLayout::halves), std::nullopt) << "neither";
}
