#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

/// A base block whose first descriptor slot holds `descriptor`.
EDID withFirstDescriptor(const std::array<std::uint8_t, 18>& descriptor) {
    return EDIDBuilder().rawDescriptor(descriptor).edid();
}

std::array<std::uint8_t, 18> nameDescriptor(std::initializer_list<std::uint8_t> text) {
    std::array<std::uint8_t, 18> d{0, 0, 0, 0xFC, 0};
    std::copy(text.begin(), text.end(), d.begin() + 5);
    return d;
}

} // namespace

TEST(EDIDIdentity, ReadsTheRawVendorProductAndSerialNumbers) {
    Bytes bytes = EDIDBuilder().build();
    bytes[8] = 0x10;
    bytes[9] = 0xAC;
    bytes[10] = 0x3A;
    bytes[11] = 0x41;
    bytes[12] = 0x4C;
    bytes[13] = 0x32;
    bytes[14] = 0x4C;
    bytes[15] = 0x42;
    const EDID edid(bytes);
    EXPECT_EQ(edid.vendorID(), 0x10ACu) << "big-endian, not decoded into letters";
    EXPECT_EQ(edid.productID(), 0x413Au) << "little-endian";
    EXPECT_EQ(edid.serialNumber(), 0x424C324Cu) << "little-endian";
}

TEST(EDIDIdentity, BuilderPacksManufacturerLetters) {
    EXPECT_EQ(EDIDBuilder().manufacturer("DEL").edid().vendorID(), 0x10ACu);
}

TEST(EDIDProductName, StopsAtTheLineFeed) {
    const auto d = nameDescriptor({'A', 'B', 'C', 0x0A, ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' '});
    EXPECT_EQ(withFirstDescriptor(d).productName(), "ABC");
}

TEST(EDIDProductName, ThirteenLettersWithoutLineFeedAreAllTaken) {
    const auto d = nameDescriptor({'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M'});
    EXPECT_EQ(withFirstDescriptor(d).productName(), "ABCDEFGHIJKLM");
}

TEST(EDIDProductName, TrimsSpacesAndTabsOnlyAtBothEnds) {
    const auto d = nameDescriptor({' ', '\t', 'U', '3', '4', ' ', 'W', '\t', 0x0A});
    EXPECT_EQ(withFirstDescriptor(d).productName(), "U34 W");
}

TEST(EDIDProductName, KeepsOtherBytesAndRepairsInvalidUTF8) {
    const auto d = nameDescriptor({'L', 'G', 0xFF, 'X', 0x00, 0x00});
    EXPECT_EQ(withFirstDescriptor(d).productName(),
              std::string("LG\xEF\xBF\xBDX") + std::string(9, '\0'));
}

TEST(EDIDProductName, TheFirstNameDescriptorWins) {
    const EDID edid = EDIDBuilder().baseTiming(cvt(1920, 1080)).productName("First").productName("Second").edid();
    EXPECT_EQ(edid.productName(), "First");
}

TEST(EDIDProductName, AbsentWithoutANameDescriptor) {
    EXPECT_EQ(EDIDBuilder().baseTiming(cvt(1920, 1080)).edid().productName(), std::nullopt);
}

TEST(EDIDRangeLimits, ReadsRatesAndPixelClock) {
    const EDID edid = EDIDBuilder().rangeLimits({48, 75, 30, 160, 60, 0}).edid();
    EXPECT_EQ(edid.rangeLimits(), (RangeLimits{{48, 75}, {30, 160}, 60000}));
}

TEST(EDIDRangeLimits, ZeroMaximumPixelClockGivesNoLimits) {
    EXPECT_EQ(EDIDBuilder().rangeLimits({48, 75, 30, 160, 0, 0}).edid().rangeLimits(), std::nullopt);
}

TEST(EDIDRangeLimits, OffsetFlags0x0AAddTo255BothMaximaOnly) {
    const EDID edid = EDIDBuilder().rangeLimits({40, 5, 30, 20, 100, 0x0A}).edid();
    EXPECT_EQ(edid.rangeLimits(), (RangeLimits{{40, 260}, {30, 275}, 100000}));
}

TEST(EDIDRangeLimits, OffsetFlags0x0FAddTo255AllFourRates) {
    const EDID edid = EDIDBuilder().rangeLimits({1, 2, 3, 4, 100, 0x0F}).edid();
    EXPECT_EQ(edid.rangeLimits(), (RangeLimits{{256, 257}, {258, 259}, 100000}));
}

TEST(EDIDRangeLimits, MaximumBelowMinimumGivesNoLimits) {
    EXPECT_EQ(EDIDBuilder().rangeLimits({76, 75, 30, 160, 60, 0}).edid().rangeLimits(), std::nullopt);
    EXPECT_EQ(EDIDBuilder().rangeLimits({48, 75, 161, 160, 60, 0}).edid().rangeLimits(), std::nullopt);
}

TEST(EDIDRangeLimits, AbsentWithoutADescriptor) {
    EXPECT_EQ(EDIDBuilder().baseTiming(cvt(1920, 1080)).edid().rangeLimits(), std::nullopt);
}
