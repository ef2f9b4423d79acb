#include "TestEDIDs.hpp"

#include <EDIDKit/EDIDIntegrity.hpp>
#include <cstdio>
#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

TEST(EDIDIntegrity, AWellFormedEDIDIsSound) {
    const EDIDIntegrity integrity = EDIDIntegrity::of(ultrawide());
    EXPECT_TRUE(integrity.isSound());
    EXPECT_EQ(integrity.specifiedExtensions, 1u);
    EXPECT_EQ(integrity.presentExtensions, 1u);
    EXPECT_TRUE(integrity.checksumProblems().empty());
    EXPECT_EQ(integrity.extensionCountProblem(), "");
}

TEST(EDIDIntegrity, AWrongChecksumNamesTheBlockTheStoredByteAndTheRightOne) {
    Bytes bytes = ultrawide().bytes();
    const std::uint8_t right = bytes[255];
    bytes[255] = static_cast<std::uint8_t>(right ^ 0x55);
    const EDIDIntegrity integrity = EDIDIntegrity::of(EDID(bytes));
    EXPECT_FALSE(integrity.checksumsValid());
    EXPECT_TRUE(integrity.extensionCountAgrees());
    ASSERT_EQ(integrity.badChecksums.size(), 1u);
    EXPECT_EQ(integrity.badChecksums[0],
              (BlockChecksumError{1, static_cast<std::uint8_t>(right ^ 0x55), right}));
    char expected[64];
    std::snprintf(expected, sizeof expected, "block 1 has checksum 0x%02x (should be 0x%02x)",
                  right ^ 0x55, right);
    EXPECT_EQ(integrity.checksumProblems(), std::vector<std::string>{expected});
}

TEST(EDIDIntegrity, EveryBadBlockIsListedInOrder) {
    Bytes bytes = ultrawide().bytes();
    bytes[127] ^= 1;
    bytes[255] ^= 2;
    const auto bad = EDIDIntegrity::of(EDID(bytes)).badChecksums;
    ASSERT_EQ(bad.size(), 2u);
    EXPECT_EQ(bad[0].block, 0u);
    EXPECT_EQ(bad[1].block, 1u);
}

TEST(EDIDIntegrity, ACountOf255WithOneExtensionPresentDisagreesThoughEveryChecksumHolds) {
    const EDID edid(withByte(ultrawide().bytes(), 126, 255));
    ASSERT_TRUE(edid.isChecksumValid());
    const EDIDIntegrity integrity = EDIDIntegrity::of(edid);
    EXPECT_TRUE(integrity.checksumsValid());
    EXPECT_FALSE(integrity.extensionCountAgrees());
    EXPECT_FALSE(integrity.isSound());
    EXPECT_EQ(integrity.extensionCountProblem(),
              "the base block specifies 255 extension blocks, but 1 is present");
}

TEST(EDIDIntegrity, ExtensionsBeyondTheCountDisagreeToo) {
    Bytes bytes = withByte(ultrawide().bytes(), 126, 0);
    bytes.resize(3 * 128);
    EXPECT_EQ(EDIDIntegrity::of(EDID(bytes)).extensionCountProblem(),
              "the base block specifies 0 extension blocks, but 2 are present");
    const Bytes whole = ultrawide().bytes();
    const Bytes baseOnly(whole.begin(), whole.begin() + 128);
    EXPECT_EQ(EDIDIntegrity::of(EDID(baseOnly)).extensionCountProblem(),
              "the base block specifies 1 extension block, but 0 are present");
}

TEST(EDIDFixingChecksums, GivesEveryBlockTheChecksumOfItsContentAndLeavesTheOriginalAlone) {
    Bytes bytes = ultrawide().bytes();
    bytes[127] ^= 1;
    bytes[255] ^= 2;
    const EDID damaged(bytes);
    const EDID fixed = damaged.fixingChecksums();
    EXPECT_TRUE(fixed.isChecksumValid());
    EXPECT_EQ(fixed, ultrawide());
    EXPECT_EQ(damaged.bytes(), bytes);
    EXPECT_EQ(ultrawide().fixingChecksums(), ultrawide());
}
