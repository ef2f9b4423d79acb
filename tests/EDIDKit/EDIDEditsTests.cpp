#include "TestEDIDs.hpp"

#include <EDIDKit/EDIDComparison.hpp>
#include <EDIDKit/EDIDIntegrity.hpp>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

/// The indices at which two byte buffers of one length differ.
std::vector<std::size_t> differences(const Bytes& a, const Bytes& b) {
    std::vector<std::size_t> at;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        if (a[i] != b[i]) at.push_back(i);
    return at;
}

/// A two-block ultrawide that also carries a DisplayID section.
EDID withDisplayID() {
    return ultrawideBuilder()
        .ctaExtension({cvt(1920, 1080)})
        .displayIDExtension({{cvt(3440, 1440), true, std::nullopt}})
        .edid();
}

} // namespace

// --- tryParse ------------------------------------------------------------------------

TEST(EDIDTryParse, GivesTheEDIDTheConstructorWould) {
    EXPECT_EQ(EDID::tryParse(ultrawide().bytes()), ultrawide());
}

TEST(EDIDTryParse, GivesNothingForEveryBufferTheConstructorRefuses) {
    EXPECT_EQ(EDID::tryParse({}), std::nullopt);
    EXPECT_EQ(EDID::tryParse(Bytes(127, 0)), std::nullopt);
    EXPECT_EQ(EDID::tryParse(Bytes(128, 0)), std::nullopt) << "no header";
    Bytes tooLong = ultrawide().bytes();
    tooLong.resize(257 * 128);
    EXPECT_EQ(EDID::tryParse(tooLong), std::nullopt);
}

TEST(EDIDTryParse, TakesAnEDIDWhoseChecksumsAreWrong) {
    const EDID broken = ultrawide().withBrokenChecksum();
    EXPECT_EQ(EDID::tryParse(broken.bytes()), broken);
}

// --- serial number and identity ------------------------------------------------------------

TEST(EDIDEdits, WithSerialChangesOnlyTheSerialNumberAndTheBaseChecksum) {
    const EDID edid = ultrawide();
    const EDID edited = edid.withSerial(0x12345678);
    EXPECT_EQ(edited.serialNumber(), 0x12345678u);
    EXPECT_EQ(edited.vendorID(), edid.vendorID());
    EXPECT_EQ(edited.productID(), edid.productID());
    EXPECT_TRUE(edited.isChecksumValid());
    EXPECT_EQ(differences(edid.bytes(), edited.bytes()),
              (std::vector<std::size_t>{12, 13, 14, 15, 127}));
    EXPECT_TRUE(sameApartFromIdentity(edid.bytes(), edited.bytes()));
}

TEST(EDIDEdits, WithTheSameSerialIsTheSameEDID) {
    const EDID edid = ultrawide();
    EXPECT_EQ(edid.withSerial(edid.serialNumber()), edid);
}

TEST(EDIDEdits, EditsLeaveTheirInputAsItWas) {
    const EDID edid = ultrawide();
    const Bytes before = edid.bytes();
    (void)edid.withSerial(7);
    (void)edid.withoutExtensions();
    (void)edid.withBrokenChecksum();
    EXPECT_EQ(edid.bytes(), before);
}

TEST(EDIDEdits, WithIdentityOfTakesTheOtherMonitorsManufacturerProductAndSerial) {
    const EDID other =
        EDIDBuilder().manufacturer("DEL").productID(0xA0B1).serialNumber(0x01020304).edid();
    const EDID edited = ultrawide().withIdentityOf(other);
    EXPECT_EQ(edited.vendorID(), other.vendorID());
    EXPECT_EQ(edited.productID(), other.productID());
    EXPECT_EQ(edited.serialNumber(), other.serialNumber());
    EXPECT_EQ(edited.productName(), ultrawide().productName()) << "nothing else comes along";
    EXPECT_EQ(edited.blockCount(), 2u);
    EXPECT_TRUE(edited.isChecksumValid());
}

TEST(EDIDEdits, WithManufactureWeekChangesTheWeekAlone) {
    const EDID edid = ultrawide();
    const EDID edited = edid.withManufactureWeek(13);
    EXPECT_EQ(edid.manufactureWeek(), 12) << "the builder's week";
    EXPECT_EQ(edited.manufactureWeek(), 13);
    EXPECT_EQ(differences(edid.bytes(), edited.bytes()), (std::vector<std::size_t>{16, 127}));
    EXPECT_TRUE(edited.isChecksumValid());
}

// --- screen size and product name ---------------------------------------------------------

TEST(EDIDEdits, WithScreenSizeCMChangesTheDeclaredSizeButNoTiming) {
    const EDID edid = ultrawide();
    ASSERT_EQ(edid.screenWidthCM(), 80);
    ASSERT_EQ(edid.screenHeightCM(), 34);
    const EDID edited = edid.withScreenSizeCM(81, 34);
    EXPECT_EQ(edited.screenWidthCM(), 81);
    EXPECT_EQ(edited.screenHeightCM(), 34);
    EXPECT_EQ(edited.detailedTimings(), edid.detailedTimings());
    EXPECT_EQ(differences(edid.bytes(), edited.bytes()), (std::vector<std::size_t>{21, 127}));
    EXPECT_TRUE(edited.isChecksumValid());
    EXPECT_FALSE(sameApartFromIdentity(edid.bytes(), edited.bytes()));
}

TEST(EDIDEdits, WithoutProductNameLeavesAnEDIDThatNamesNoProduct) {
    const EDID edid = ultrawide();
    ASSERT_EQ(edid.productName(), "Halvora 34");
    const EDID edited = edid.withoutProductName();
    EXPECT_EQ(edited.productName(), std::nullopt);
    EXPECT_EQ(edited.rangeLimits(), edid.rangeLimits());
    EXPECT_EQ(edited.detailedTimings(), edid.detailedTimings());
    EXPECT_EQ(differences(edid.bytes(), edited.bytes()).size(), 2u) << "the tag and the checksum";
    EXPECT_TRUE(edited.isChecksumValid());
}

TEST(EDIDEdits, WithoutProductNameOfAnUnnamedEDIDIsTheSameEDID) {
    const EDID unnamed = EDIDBuilder().baseTiming(cvt(3440, 1440)).edid();
    EXPECT_EQ(unnamed.withoutProductName(), unnamed);
}

TEST(EDIDEdits, WithProductNameWritesTheNameAsTheBuilderWould) {
    const EDID renamed = ultrawide().withProductName("Other 27");
    EXPECT_EQ(renamed.productName(), "Other 27");
    const EDID built = EDIDBuilder()
                           .screenSizeCM(80, 34)
                           .baseTiming(cvt(3440, 1440))
                           .productName("Other 27")
                           .rangeLimits({})
                           .ctaExtension({cvt(1920, 1080)})
                           .edid();
    EXPECT_EQ(renamed, built);
    EXPECT_TRUE(renamed.isChecksumValid());
}

TEST(EDIDEdits, WithProductNameKeepsThirteenBytesWithoutALineFeed) {
    const std::string name = "ABCDEFGHIJKLMNOP";
    EXPECT_EQ(ultrawide().withProductName(name).productName(), "ABCDEFGHIJKLM");
}

TEST(EDIDEdits, WithProductNameOnAnEDIDWithoutANameDescriptorChangesNothing) {
    const EDID unnamed = EDIDBuilder().baseTiming(cvt(3440, 1440)).edid();
    EXPECT_EQ(unnamed.withProductName("Other"), unnamed);
}

// --- extension blocks and checksums ------------------------------------------------------------

TEST(EDIDEdits, WithExtensionCountAnnouncesBlocksThatAreNotThere) {
    const EDID edited = ultrawide().withExtensionCount(255);
    EXPECT_EQ(edited.extensionCount(), 255u);
    EXPECT_EQ(edited.blockCount(), 2u);
    EXPECT_TRUE(edited.isChecksumValid());
    EXPECT_EQ(EDIDIntegrity::of(edited).extensionCountProblem(),
              "the base block specifies 255 extension blocks, but 1 is present");
    EXPECT_EQ(differences(ultrawide().bytes(), edited.bytes()),
              (std::vector<std::size_t>{126, 127}));
}

TEST(EDIDEdits, WithoutExtensionsIsTheSoundBaseBlockAlone) {
    const EDID edid = withDisplayID();
    ASSERT_EQ(edid.blockCount(), 3u);
    const EDID base = edid.withoutExtensions();
    EXPECT_EQ(base.blockCount(), 1u);
    EXPECT_EQ(base.extensionCount(), 0u);
    EXPECT_TRUE(EDIDIntegrity::of(base).isSound());
    EXPECT_TRUE(base.ctaBlockStarts().empty());
    EXPECT_TRUE(base.displayIDTimings().empty());
    EXPECT_EQ(base.preferredResolution(), edid.preferredResolution());
    EXPECT_EQ(differences(Bytes(edid.bytes().begin(), edid.bytes().begin() + 128), base.bytes()),
              (std::vector<std::size_t>{126, 127}));
    EXPECT_EQ(base.withoutExtensions(), base) << "a base block alone stays as it is";
}

TEST(EDIDEdits, WithBrokenChecksumBreaksTheNamedBlockOnly) {
    const EDID edid = ultrawide();
    const EDID base = edid.withBrokenChecksum();
    EXPECT_FALSE(base.isChecksumValid());
    EXPECT_EQ(base.storedChecksum(0), static_cast<std::uint8_t>(edid.storedChecksum(0) + 1));
    EXPECT_EQ(differences(edid.bytes(), base.bytes()), std::vector<std::size_t>{127});

    const EDID extension = edid.withBrokenChecksum(1);
    const auto bad = EDIDIntegrity::of(extension).badChecksums;
    ASSERT_EQ(bad.size(), 1u);
    EXPECT_EQ(bad[0], (BlockChecksumError{1, static_cast<std::uint8_t>(edid.storedChecksum(1) + 1),
                                          edid.storedChecksum(1)}));
    EXPECT_TRUE(sameApartFromIdentity(edid.bytes(), extension.bytes()));
}

TEST(EDIDEdits, WithBrokenChecksumIsBrokenEvenWhereTheChecksumWasWrongAlready) {
    const EDID twice = ultrawide().withBrokenChecksum().withBrokenChecksum();
    EXPECT_FALSE(twice.isChecksumValid());
    EXPECT_EQ(twice, ultrawide().withBrokenChecksum());
}

TEST(EDIDEdits, ABlockPastTheLastIsAnError) {
    EXPECT_THROW((void)ultrawide().withBrokenChecksum(2), std::out_of_range);
    EXPECT_THROW((void)ultrawide().storedChecksum(2), std::out_of_range);
}

// --- descriptor slots ----------------------------------------------------------------------------

TEST(EDIDDescriptorSlots, ListTheBaseSlotsThenEveryCTASlotUsedOrFree) {
    // One CTA timing at 132, then free slots up to 222: one at 240 would reach
    // past the checksum byte.
    EXPECT_EQ(ultrawide().descriptorSlotOffsets(),
              (std::vector<std::size_t>{54, 72, 90, 108, 132, 150, 168, 186, 204, 222}));
}

TEST(EDIDDescriptorSlots, ACTABlockWithoutADescriptorAreaAddsNone) {
    const EDID edid(withByte(ultrawide().bytes(), 128 + 2, 0));
    EXPECT_EQ(edid.descriptorSlotOffsets(), (std::vector<std::size_t>{54, 72, 90, 108}));
}

TEST(EDIDDescriptorSlots, ADisplayIDSectionAddsNone) {
    EXPECT_EQ(withDisplayID().descriptorSlotOffsets(), ultrawide().descriptorSlotOffsets());
}
