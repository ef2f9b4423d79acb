#include <EDIDKit/Timing.hpp>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using namespace EDIDKit;

namespace {

std::vector<std::uint8_t> bytesOf(const std::array<std::uint8_t, 18>& a) {
    return {a.begin(), a.end()};
}

} // namespace

TEST(TimingDescriptor, DisplayDescriptorDecodesToNothing) {
    std::vector<std::uint8_t> d(18, 0);
    d[3] = 0xFC;
    d[5] = 'A';
    EXPECT_FALSE(Timing::fromDescriptor(d));
}

TEST(TimingDescriptor, SeventeenByteSliceDecodesToNothing) {
    const Timing t = Timing::cvtReducedBlanking(1920, 1080, 60);
    auto bytes = bytesOf(t.descriptorBytes({}));
    bytes.pop_back();
    EXPECT_FALSE(Timing::fromDescriptor(bytes));
    bytes.push_back(0x1A);
    bytes.push_back(0);
    EXPECT_FALSE(Timing::fromDescriptor(bytes)) << "nineteen bytes are not a descriptor either";
}

TEST(TimingDescriptor, DecodesEveryPackedField) {
    // 1080p60 as CEA-861 lists it: 148.5 MHz, 1920+280, fp 88 sync 44, 1080+45, fp 4 sync 5.
    const std::vector<std::uint8_t> d{0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58,
                                      0x2C, 0x45, 0x00, 0x50, 0x1D, 0x74, 0x00, 0x00, 0x1E};
    const auto t = Timing::fromDescriptor(d);
    ASSERT_TRUE(t);
    EXPECT_EQ(*t, (Timing{14850, 1920, 280, 88, 44, 1080, 45, 4, 5}));
    EXPECT_NEAR(t->refreshRate(), 60.0, 1e-9);
    EXPECT_NEAR(t->hRateKHz(), 67.5, 1e-9);
    EXPECT_EQ(t->resolution(), (Resolution{1920, 1080}));
}

TEST(TimingDescriptor, HighBitsOfPorchesAndSyncsComeFromByteEleven) {
    const Timing t{30000, 3000, 1500, 1000, 700, 2000, 100, 60, 50};
    ASSERT_TRUE(t.fitsDescriptor());
    EXPECT_EQ(Timing::fromDescriptor(bytesOf(t.descriptorBytes({600, 340}))), t);
}

TEST(TimingDescriptor, EncodingWritesImageSizeNoBordersAndReducedBlankingFlags) {
    const Timing t = Timing::cvtReducedBlanking(3440, 1440, 60);
    const auto d = t.descriptorBytes({0x321, 0x1A4});
    EXPECT_EQ(d[12], 0x21);
    EXPECT_EQ(d[13], 0xA4);
    EXPECT_EQ(d[14], 0x31);
    EXPECT_EQ(d[15], 0);
    EXPECT_EQ(d[16], 0);
    EXPECT_EQ(d[17], 0x1A);
}

TEST(TimingDescriptor, EncodeThenDecodeReturnsTheSameNineFieldsForRandomFittingTimings) {
    std::mt19937 random(20261122);
    const auto upTo = [&](int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random);
    };
    for (int i = 0; i < 20000; ++i) {
        Timing t{1 + upTo(65535), upTo(4096), upTo(4096), upTo(1024), upTo(1024),
                 upTo(4096),      upTo(4096), upTo(64),   upTo(64)};
        ASSERT_TRUE(t.fitsDescriptor());
        const auto decoded =
            Timing::fromDescriptor(bytesOf(t.descriptorBytes({upTo(4096), upTo(4096)})));
        ASSERT_TRUE(decoded) << "iteration " << i;
        ASSERT_EQ(*decoded, t) << "iteration " << i;
    }
}

TEST(TimingFits, PixelClockOf65536OrWidthOf4096DoesNotFit) {
    Timing t = Timing::cvtReducedBlanking(1920, 1080, 60);
    EXPECT_TRUE(t.fitsDescriptor());
    t.pixelClock10kHz = 65536;
    EXPECT_FALSE(t.fitsDescriptor());
    t.pixelClock10kHz = 65535;
    EXPECT_TRUE(t.fitsDescriptor());
    t.width = 4096;
    EXPECT_FALSE(t.fitsDescriptor());
    t.width = 4095;
    t.vBlank = 4096;
    EXPECT_FALSE(t.fitsDescriptor());
}

TEST(TimingDisplayID, DecodesFieldsStoredMinusOneAndDropsPolarityBits) {
    std::vector<std::uint8_t> e(20, 0);
    const auto put = [&](std::size_t i, int v) {
        e[i] = static_cast<std::uint8_t>((v - 1) & 0xFF);
        e[i + 1] = static_cast<std::uint8_t>((v - 1) >> 8);
    };
    const int clock = 31975 - 1;
    e[0] = clock & 0xFF;
    e[1] = (clock >> 8) & 0xFF;
    e[2] = (clock >> 16) & 0xFF;
    e[3] = 0x80;
    put(4, 3440);
    put(6, 160);
    put(8, 48);
    e[9] |= 0x80;
    put(10, 32);
    put(12, 1440);
    put(14, 41);
    put(16, 3);
    e[17] |= 0x80;
    put(18, 10);
    EXPECT_EQ(Timing::fromDisplayID(e, false), (Timing{31975, 3440, 160, 48, 32, 1440, 41, 3, 10}));
}

TEST(TimingDisplayID, TypeSevenClockInKilohertzIsTruncatedToTenKilohertz) {
    std::vector<std::uint8_t> e(20, 0);
    const int kHz = 319759; // 319.759 MHz
    e[0] = (kHz - 1) & 0xFF;
    e[1] = ((kHz - 1) >> 8) & 0xFF;
    e[2] = ((kHz - 1) >> 16) & 0xFF;
    EXPECT_EQ(Timing::fromDisplayID(e, true)->pixelClock10kHz, 31975);
    EXPECT_EQ(Timing::fromDisplayID(e, false)->pixelClock10kHz, kHz);
}

TEST(TimingDisplayID, FewerThanTwentyBytesDecodeToNothing) {
    const std::vector<std::uint8_t> e(19, 0);
    EXPECT_FALSE(Timing::fromDisplayID(e, false));
}

TEST(CVTReducedBlanking, Full1080pMatchesTheReferenceTiming) {
    EXPECT_EQ(Timing::cvtReducedBlanking(1920, 1080, 60),
              (Timing{13850, 1920, 160, 48, 32, 1080, 31, 3, 5}));
}

TEST(CVTReducedBlanking, SplitOf3440x1440HasNoStandardRatioSoVSyncIsTen) {
    EXPECT_EQ(Timing::cvtReducedBlanking(1720, 1440, 60),
              (Timing{16700, 1720, 160, 48, 32, 1440, 41, 3, 10}));
}

TEST(CVTReducedBlanking, WidePanelsMatchTheReferenceClocks) {
    const Timing ultrawide = Timing::cvtReducedBlanking(3440, 1440, 60);
    EXPECT_EQ(ultrawide.pixelClock10kHz, 31975);
    EXPECT_EQ(ultrawide.vBlank, 41);
    EXPECT_EQ(ultrawide.vSync, 10);
    const Timing qhd = Timing::cvtReducedBlanking(2560, 1440, 60);
    EXPECT_EQ(qhd.pixelClock10kHz, 24150);
    EXPECT_EQ(qhd.vSync, 5);
}

TEST(CVTReducedBlanking, VSyncFollowsTheAspectRatioTable) {
    EXPECT_EQ(Timing::cvtReducedBlanking(1600, 1200, 60).vSync, 4);  // 4:3
    EXPECT_EQ(Timing::cvtReducedBlanking(1920, 1200, 60).vSync, 6);  // 16:10
    EXPECT_EQ(Timing::cvtReducedBlanking(1280, 1024, 60).vSync, 7);  // 5:4
    EXPECT_EQ(Timing::cvtReducedBlanking(1500, 900, 60).vSync, 7);   // 15:9
    EXPECT_EQ(Timing::cvtReducedBlanking(5120, 1440, 60).vSync, 10); // 32:9
}

TEST(CVTReducedBlanking, VerticalBlankingNeverFallsBelowSyncPlusPorches) {
    // A short mode has so few lines that 460 µs of blanking needs fewer than
    // sync + front porch + minimum back porch.
    const Timing t = Timing::cvtReducedBlanking(640, 100, 60);
    EXPECT_EQ(t.vBlank, 10 + 9);
}

TEST(CVTReducedBlanking, AbsurdInputsStayDefined) {
    const Timing zeroHeight = Timing::cvtReducedBlanking(1920, 0, 60);
    EXPECT_GE(zeroHeight.vBlank, 0);
    const Timing noRefresh = Timing::cvtReducedBlanking(1920, 1080, 0);
    EXPECT_EQ(noRefresh.pixelClock10kHz, 0);
}

TEST(Timing, DecodersKeepOnlyTimingsOfTenMegahertzAndMore) {
    EXPECT_FALSE(Timing::cvtReducedBlanking(240, 320, 60).isKeptByDecoders()) << "8.00 MHz";
    EXPECT_TRUE(Timing::cvtReducedBlanking(320, 480, 60).isKeptByDecoders());
    Timing t = Timing::cvtReducedBlanking(1720, 1440, 60);
    t.pixelClock10kHz = 999;
    EXPECT_FALSE(t.isKeptByDecoders());
    t.pixelClock10kHz = 1000;
    EXPECT_TRUE(t.isKeptByDecoders());
}

TEST(TimingFits, APixelClockOfZeroDoesNotFitBecauseTheSlotWouldReadAsADisplayDescriptor) {
    const Timing tiny = Timing::cvtReducedBlanking(1, 1, 60);
    ASSERT_EQ(tiny.pixelClock10kHz, 0);
    EXPECT_FALSE(tiny.fitsDescriptor());
    EXPECT_FALSE(Timing::fromDescriptor(bytesOf(tiny.descriptorBytes({}))));
}

TEST(TimingFits, NegativeSizesDoNotFit) {
    Timing t = Timing::cvtReducedBlanking(1920, 1080, 60);
    t.width = -1;
    EXPECT_FALSE(t.fitsDescriptor());
}
