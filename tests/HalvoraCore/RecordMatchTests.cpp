// Tying an attached display to its monitor's record: through an override of
// ours, however the port hands it back, before the identity it reports.

#include "SampleEDIDs.hpp"
#include <HalvoraCore/SettingsRecords.hpp>
#include <gtest/gtest.h>

using namespace HalvoraCore;
using namespace ControllerTesting;
using EDIDKit::Bytes;
using EDIDKit::EDID;
using EDIDKit::SplitLayout;

namespace {

Bytes splitOf(const Bytes& edid) {
    return EDID(edid).addingSplit(SplitLayout::halves, {3440, 1440}).bytes();
}

/// What a port that stamps another serial number on what it is given hands back.
Bytes withSerialPlus(const Bytes& written, std::uint32_t step) {
    const EDID edid(written);
    return edid.withSerial(edid.serialNumber() + step).bytes();
}
/// What a port that breaks the checksum of what it is given hands back.
Bytes withBrokenChecksum(const Bytes& written) {
    return EDID(written).withBrokenChecksum().bytes();
}

/// A second unit of the ultrawide: the same model, another serial number.
Bytes secondUnit() {
    return withSerialPlus(ultrawideFull(), 7);
}

DisplaySettings recordOf(const Bytes& factory, std::optional<std::string> port = "DP-1") {
    return {identityOf(factory), std::move(port), {3440, 1440}};
}
DisplaySettings keptRecordOf(const Bytes& factory, std::optional<std::string> port = "DP-1") {
    DisplaySettings s = recordOf(factory, std::move(port));
    s.overrideEDID = splitOf(factory);
    return s;
}

ExternalDisplay shown(const Bytes& edid, std::optional<std::string> port = "DP-1", const char* id = "dcp-1") {
    return {DisplayID(id), edid, std::move(port)};
}

SettingsRecords::Match matchOf(const SettingsRecords& records, const ExternalDisplay& display,
                               const UnconfirmedOverride* unconfirmed = nullptr) {
    return records.match(display, EDID(display.edid), unconfirmed, SplitLayout::halves);
}

} // namespace

TEST(RecordMatch, AMonitorShowingItsOwnEDIDBelongsToTheRecordOfItsIdentity) {
    const SettingsRecords records({keptRecordOf(superwideFull()), keptRecordOf(ultrawideFull())});
    const auto match = matchOf(records, shown(ultrawideFull()));
    EXPECT_EQ(match.key, identityOf(ultrawideFull()));
    EXPECT_EQ(match.ours, std::nullopt) << "its own EDID is not ours";
}

TEST(RecordMatch, AnUnknownMonitorIsKeyedByTheIdentityItReportsAndHasNoRecord) {
    const SettingsRecords records({keptRecordOf(superwideFull())});
    const auto match = matchOf(records, shown(ultrawideFull()));
    EXPECT_EQ(match.key, identityOf(ultrawideFull()));
    EXPECT_EQ(match.ours, std::nullopt);
    EXPECT_EQ(records.find(match.key), nullptr);
}

TEST(RecordMatch, TheSavedOverrideFindsItsRecordAsWrittenWithAnotherSerialOrWithABrokenChecksum) {
    const DisplaySettings kept = keptRecordOf(ultrawideFull());
    const SettingsRecords records({kept});
    for (const Bytes& reported :
         {splitOf(ultrawideFull()), withSerialPlus(splitOf(ultrawideFull()), 1), withBrokenChecksum(splitOf(ultrawideFull()))}) {
        const auto match = matchOf(records, shown(reported));
        EXPECT_EQ(match.key, kept.identity);
        EXPECT_EQ(match.ours, kept.overrideEDID) << "ours as it was written, not as handed back";
    }
}

TEST(RecordMatch, OurOverrideComesFirstEvenWhenItsStampedSerialNamesAnotherMonitor) {
    // The port stamped the serial number of the second unit on the first
    // unit's override: it is still the first unit's.
    const DisplaySettings first = keptRecordOf(ultrawideFull());
    const DisplaySettings second = recordOf(secondUnit(), "DP-2");
    const SettingsRecords records({second, first});
    const auto match = matchOf(records, shown(withSerialPlus(splitOf(ultrawideFull()), 7)));
    EXPECT_EQ(match.key, first.identity);
}

TEST(RecordMatch, TheUnconfirmedOverrideOnTheDisplayBelongsToTheRecordItWasWrittenFor) {
    // Nothing is saved yet: only the change knows whose override it is.
    const DisplaySettings identified = recordOf(ultrawideFull());
    const SettingsRecords records({identified});
    const UnconfirmedOverride unconfirmed{DisplayID("dcp-1"), splitOf(ultrawideFull()), identified.identity};
    for (const Bytes& reported :
         {splitOf(ultrawideFull()), withSerialPlus(splitOf(ultrawideFull()), 1), withBrokenChecksum(splitOf(ultrawideFull()))}) {
        const auto match = matchOf(records, shown(reported), &unconfirmed);
        EXPECT_EQ(match.key, identified.identity);
        EXPECT_EQ(match.ours, splitOf(ultrawideFull()));
    }
    EXPECT_EQ(matchOf(records, shown(withSerialPlus(splitOf(ultrawideFull()), 1))).ours, std::nullopt)
        << "without the change the copy is nobody's override";
}

TEST(RecordMatch, AnUnconfirmedOverrideWrittenToAnotherDisplayIsNotThisOnesEDID) {
    const SettingsRecords records({recordOf(ultrawideFull()), recordOf(secondUnit(), "DP-2")});
    const UnconfirmedOverride onFirst{DisplayID("dcp-1"), splitOf(ultrawideFull()), identityOf(ultrawideFull())};
    // The second unit's own override comes back with the first unit's serial.
    const Bytes reported =
        EDID(splitOf(secondUnit())).withSerial(EDID(ultrawideFull()).serialNumber()).bytes();
    const auto match = matchOf(records, shown(reported, "DP-2", "dcp-2"), &onFirst);
    EXPECT_EQ(match.ours, std::nullopt);
    EXPECT_EQ(match.key, identityOf(ultrawideFull())) << "by the identity it reports, as any other EDID";
}

TEST(RecordMatch, TwoUnitsOfOneModelEachFindTheirOwnRecordThroughTheirOverrides) {
    const DisplaySettings first = keptRecordOf(ultrawideFull(), "DP-1");
    const DisplaySettings second = keptRecordOf(secondUnit(), "DP-2");
    const SettingsRecords records({first, second});
    EXPECT_EQ(matchOf(records, shown(splitOf(secondUnit()), "DP-2")).key, second.identity) << "byte for byte";
    EXPECT_EQ(matchOf(records, shown(splitOf(ultrawideFull()), "DP-2")).key, first.identity)
        << "byte for byte, whatever the port";
    // A broken checksum keeps the identity: that tells the units apart.
    EXPECT_EQ(matchOf(records, shown(withBrokenChecksum(splitOf(secondUnit())), "DP-1")).key, second.identity);
    // Another serial number does not: the port each was last seen on does.
    EXPECT_EQ(matchOf(records, shown(withSerialPlus(splitOf(secondUnit()), 1), "DP-2")).key, second.identity);
    EXPECT_EQ(matchOf(records, shown(withSerialPlus(splitOf(ultrawideFull()), 1), "DP-1")).key, first.identity);
}

TEST(RecordMatch, UpdatingThroughTheMatchNeverMakesARecordForAnAlteredIdentity) {
    const DisplaySettings kept = keptRecordOf(ultrawideFull());
    const SettingsRecords records({kept});
    const auto match = matchOf(records, shown(withSerialPlus(splitOf(ultrawideFull()), 1)));
    const auto next = records.updated(match.key, "DP-3", EDIDKit::Resolution{3440, 1440},
                                      [](DisplaySettings& s) { s.behavior = PBPBehavior::latchedAtPlug; });
    ASSERT_TRUE(next);
    ASSERT_EQ(next->list().size(), 1u);
    EXPECT_EQ(next->list()[0].identity, kept.identity);
    EXPECT_EQ(next->list()[0].port, "DP-3");
    EXPECT_EQ(next->list()[0].behavior, PBPBehavior::latchedAtPlug);
}

TEST(RecordMatch, AnOverrideLeftUnconfirmedByAnEarlierRunIsOursForTheRecordItWasBuiltFor) {
    DisplaySettings identified = recordOf(ultrawideFull());
    identified.factoryFullEDID = ultrawideFull();
    const SettingsRecords records({recordOf(superwideFull(), "DP-2"), identified});
    for (const Bytes& reported : {splitOf(ultrawideFull()), withSerialPlus(splitOf(ultrawideFull()), 1)}) {
        const auto match = matchOf(records, shown(reported));
        EXPECT_EQ(match.key, identified.identity);
        EXPECT_EQ(match.ours, splitOf(ultrawideFull()));
    }
}

TEST(RecordMatch, AnotherUnitsOwnEDIDIsNeverTakenForAnOverrideBuiltFromThisOnes) {
    // A monitor whose own EDID carries the split already: building an
    // override from it changes nothing, and a second unit of the model shows
    // the same EDID apart from its serial number.
    const Bytes withSplit = splitOf(ultrawideFull());
    DisplaySettings first = recordOf(withSplit);
    first.factoryFullEDID = withSplit;
    const Bytes second = withSerialPlus(withSplit, 7);
    const auto match = matchOf(SettingsRecords({first}), shown(second, "DP-1"));
    EXPECT_EQ(match.key, identityOf(second)) << "a monitor of its own";
    EXPECT_EQ(match.ours, std::nullopt);
}
