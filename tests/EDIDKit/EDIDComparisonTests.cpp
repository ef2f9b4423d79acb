// Telling an EDID we wrote from what a system hands back for it: only the
// monitor's identity and the checksums may differ.

#include "TestEDIDs.hpp"

#include <EDIDKit/EDIDComparison.hpp>

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

Bytes written() { return ultrawide().bytes(); }

std::array<std::uint8_t, 18> textDescriptor(std::uint8_t tag, const char* text) {
    std::array<std::uint8_t, 18> d{0, 0, 0, tag, 0};
    for (std::size_t i = 0; text[i] != 0 && i < 13; ++i) d[5 + i] = static_cast<std::uint8_t>(text[i]);
    return d;
}

Bytes withDescriptor(std::uint8_t tag, const char* text) {
    return EDIDBuilder().baseTiming(cvt(3440, 1440)).rawDescriptor(textDescriptor(tag, text)).build();
}

} // namespace

TEST(EDIDComparison, EqualBytesAreTheSame) { EXPECT_TRUE(sameApartFromIdentity(written(), written())); }

TEST(EDIDComparison, AnotherSerialNumberWithItsChecksumIsTheSame) {
    Bytes back = written();
    for (std::size_t i = 12; i < 16; ++i) back = withByte(back, i, static_cast<std::uint8_t>(back[i] + 7));
    EXPECT_TRUE(sameApartFromIdentity(written(), back));
}

TEST(EDIDComparison, AnotherManufacturerAndProductCodeAreTheSame) {
    Bytes back = withByte(written(), 8, 0x10);
    back = withByte(back, 9, 0xAC);
    back = withByte(back, 10, 0x12);
    EXPECT_TRUE(sameApartFromIdentity(written(), back));
}

TEST(EDIDComparison, ABrokenChecksumInAnyBlockIsTheSame) {
    Bytes back = written();
    ASSERT_EQ(back.size(), 256u);
    back[127] ^= 0x5A;
    back[255] ^= 0x01;
    EXPECT_TRUE(sameApartFromIdentity(written(), back));
}

TEST(EDIDComparison, AnotherSerialTextIsTheSame) {
    EXPECT_TRUE(sameApartFromIdentity(withDescriptor(0xFF, "ABC123"), withDescriptor(0xFF, "XYZ999")));
}

TEST(EDIDComparison, AnotherProductNameIsNotTheSame) {
    EXPECT_FALSE(sameApartFromIdentity(withDescriptor(0xFC, "Halvora 34"), withDescriptor(0xFC, "Halvora 35")));
}

TEST(EDIDComparison, ASerialTextInPlaceOfANameIsNotTheSame) {
    EXPECT_FALSE(sameApartFromIdentity(withDescriptor(0xFC, "ABC123"), withDescriptor(0xFF, "ABC123")));
}

TEST(EDIDComparison, AnotherManufactureWeekIsNotTheSame) {
    EXPECT_FALSE(sameApartFromIdentity(written(), withByte(written(), 16, 33)));
}

TEST(EDIDComparison, AnotherTimingByteIsNotTheSame) {
    EXPECT_FALSE(sameApartFromIdentity(written(), withByte(written(), 56, static_cast<std::uint8_t>(written()[56] + 1))));
    EXPECT_FALSE(sameApartFromIdentity(written(), withByte(written(), 140, static_cast<std::uint8_t>(written()[140] + 1))));
}

TEST(EDIDComparison, AnEDIDWithoutItsExtensionIsNotTheSame) {
    const Bytes full = written();
    const Bytes back = withByte(Bytes(full.begin(), full.begin() + 128), 126, 0);
    EXPECT_FALSE(sameApartFromIdentity(full, back));
}

TEST(EDIDComparison, ShortInputsAreComparedWhole) {
    EXPECT_TRUE(sameApartFromIdentity(Bytes{1, 2, 3}, Bytes{1, 2, 3}));
    EXPECT_FALSE(sameApartFromIdentity(Bytes{1, 2, 3}, Bytes{1, 2, 4}));
}
