#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

using Offsets = std::vector<std::size_t>;

TEST(CTABlocks, ASecondBlockTaggedCTAIsFound) {
    EXPECT_EQ(ultrawide().ctaBlockStarts(), Offsets{128});
}

TEST(CTABlocks, ADisplayIDBlockIsNotACTABlock) {
    const EDID edid = ultrawideBuilder().displayIDExtension({{cvt(3440, 1440), true, {}}}).edid();
    EXPECT_EQ(edid.ctaBlockStarts(), Offsets{});
}

TEST(CTABlocks, EveryCTABlockIsFoundInBlockOrder) {
    const EDID edid = ultrawideBuilder()
                          .ctaExtension({cvt(1920, 1080)})
                          .displayIDExtension({{cvt(3440, 1440), true, {}}})
                          .ctaExtension({cvt(1280, 720)})
                          .edid();
    EXPECT_EQ(edid.ctaBlockStarts(), (Offsets{128, 384}));
}

TEST(CTADescriptorSlots, DescriptorStartBelowFourMeansNoDescriptorArea) {
    const Bytes bytes = withByte(ultrawide().bytes(), 128 + 2, 0);
    EXPECT_EQ(EDID(bytes).ctaDescriptorOffsets(128), CTADescriptorSlots{});
}

TEST(CTADescriptorSlots, EmptyAreaAtFourReportsItsFirstSlotFree) {
    const EDID edid = ultrawideBuilder().ctaExtension({}).edid();
    EXPECT_EQ(edid.ctaDescriptorOffsets(128), (CTADescriptorSlots{{}, 132}));
}

TEST(CTADescriptorSlots, TimingsAreOccupiedAndPaddingAfterThemIsFree) {
    const EDID edid = ultrawideBuilder().ctaExtension({cvt(1920, 1080), cvt(1280, 720)}, {0x41, 0x10}).edid();
    EXPECT_EQ(edid.ctaDescriptorOffsets(128), (CTADescriptorSlots{{134, 152}, 170}));
}

TEST(CTADescriptorSlots, SixTimingsFillTheAreaWithNoFreeSlot) {
    const std::vector<Timing> six(6, cvt(1920, 1080));
    const EDID edid = ultrawideBuilder().ctaExtension(six).edid();
    EXPECT_EQ(edid.ctaDescriptorOffsets(128),
              (CTADescriptorSlots{{132, 150, 168, 186, 204, 222}, std::nullopt}));
}

TEST(CTADescriptorSlots, ASlotWithZeroClockIsFreeWhateverFollows) {
    // A display descriptor (clock 0) after one timing: the slot counts as free.
    Bytes bytes = ultrawideBuilder().ctaExtension({cvt(1920, 1080), cvt(1280, 720)}).build();
    bytes[128 + 22] = 0;
    bytes[128 + 23] = 0;
    bytes[128 + 25] = 0xFC;
    fixBlockChecksum(bytes, 128);
    EXPECT_EQ(EDID(bytes).ctaDescriptorOffsets(128), (CTADescriptorSlots{{132}, 150}));
}

TEST(DetailedTimings, BaseSlotsFirstThenCTABlocksSkippingDisplayDescriptors) {
    const EDID edid = EDIDBuilder()
                          .baseTiming(cvt(3440, 1440))
                          .productName("X")
                          .baseTiming(cvt(2560, 1440))
                          .ctaExtension({cvt(1920, 1080)})
                          .ctaExtension({cvt(1280, 720)})
                          .edid();
    EXPECT_EQ(edid.detailedTimings(),
              (std::vector<Timing>{cvt(3440, 1440), cvt(2560, 1440), cvt(1920, 1080), cvt(1280, 720)}));
}

TEST(DetailedTimings, TimingsAfterADisplayDescriptorInACTABlockAreNotRead) {
    Bytes bytes = ultrawideBuilder().ctaExtension({cvt(1920, 1080), cvt(1280, 720), cvt(1600, 900)}).build();
    bytes[128 + 22] = 0;
    bytes[128 + 23] = 0;
    fixBlockChecksum(bytes, 128);
    EXPECT_EQ(EDID(bytes).detailedTimings(), (std::vector<Timing>{cvt(3440, 1440), cvt(1920, 1080)}));
}

TEST(DisplayIDTimings, TypeOneTimingsWithPreferredFlags) {
    const EDID edid = ultrawideBuilder()
                          .displayIDExtension({{cvt(3440, 1440), false, {}}, {cvt(1720, 1440), true, {}}})
                          .edid();
    EXPECT_EQ(edid.displayIDTimings(),
              (std::vector<DisplayIDTiming>{{cvt(3440, 1440), false}, {cvt(1720, 1440), true}}));
}

TEST(DisplayIDTimings, TypeSevenClocksAreReadInKilohertz) {
    const EDID edid = ultrawideBuilder()
                          .displayIDExtension({{cvt(5120, 1440), true, 469759}}, /*typeVII=*/true)
                          .edid();
    Timing expected = cvt(5120, 1440);
    expected.pixelClock10kHz = 46975;
    EXPECT_EQ(edid.displayIDTimings(), (std::vector<DisplayIDTiming>{{expected, true}}));
}

TEST(DisplayIDTimings, OtherDataBlocksAreSkippedAndPaddingStopsTheScan) {
    Bytes bytes = ultrawideBuilder().displayIDExtension({{cvt(3440, 1440), true, {}}}).build();
    // Put a 2-byte product-identification-like block (tag 0x00 with length 2)
    // before the timing block by rebuilding the section by hand.
    Bytes section(bytes.begin() + 128, bytes.end());
    Bytes rebuilt(128, 0);
    rebuilt[0] = 0x70;
    rebuilt[1] = 0x13;
    // The builder's section: product identification (15 bytes), then the timing block.
    const Bytes timingBlock(section.begin() + 20, section.begin() + 20 + 23);
    ASSERT_EQ(timingBlock[0], 0x03);
    const Bytes other{0x7F, 0x00, 0x02, 0xAA, 0xBB};
    std::copy(other.begin(), other.end(), rebuilt.begin() + 5);
    std::copy(timingBlock.begin(), timingBlock.end(), rebuilt.begin() + 10);
    // Padding (tag 0, length 0) then a timing block that must not be read.
    std::copy(timingBlock.begin(), timingBlock.end(), rebuilt.begin() + 10 + 23 + 3);
    rebuilt[2] = static_cast<std::uint8_t>(5 + 23 + 3 + 23);
    // The base block stays; the section is replaced in place (copying into a
    // vector of the final size also keeps GCC 12's -Warray-bounds quiet at -O3).
    ASSERT_EQ(bytes.size(), 256u);
    Bytes whole = bytes;
    std::copy(rebuilt.begin(), rebuilt.end(), whole.begin() + 128);
    fixBlockChecksum(whole, 128);
    EXPECT_EQ(EDID(whole).displayIDTimings(), (std::vector<DisplayIDTiming>{{cvt(3440, 1440), true}}));
}

TEST(DisplayIDTimings, ADescriptorOverrunningItsBlockIsNotRead) {
    Bytes bytes = ultrawideBuilder().displayIDExtension({{cvt(3440, 1440), true, {}}}).build();
    bytes[128 + 7] = 19; // the timing block claims 19 bytes: no whole descriptor
    fixBlockChecksum(bytes, 128);
    EXPECT_TRUE(EDID(bytes).displayIDTimings().empty());
}

TEST(NativeResolution, WithoutDisplayIDItIsThePreferredResolution) {
    EXPECT_EQ(ultrawide().nativeResolution(), (Resolution{3440, 1440}));
    EXPECT_EQ(ultrawide().preferredResolution(), (Resolution{3440, 1440}));
}

TEST(NativeResolution, ALargerPreferredDisplayIDTimingWins) {
    const EDID edid = EDIDBuilder()
                          .baseTiming(cvt(1720, 1440))
                          .displayIDExtension({{cvt(3440, 1440), true, {}}})
                          .edid();
    EXPECT_EQ(edid.nativeResolution(), (Resolution{3440, 1440}));
    EXPECT_EQ(edid.preferredResolution(), (Resolution{1720, 1440}));
}

TEST(NativeResolution, ASmallerPreferredDisplayIDTimingLosesToTheBasePreferred) {
    // The preferred flag picks 1720×1440 over the larger 5120×1440 entry, but
    // the base block's 3440×1440 is larger than it.
    const EDID edid = ultrawideBuilder()
                          .displayIDExtension({{cvt(5120, 1440), false, {}}, {cvt(1720, 1440), true, {}}})
                          .edid();
    EXPECT_EQ(edid.nativeResolution(), (Resolution{3440, 1440}));
}

TEST(NativeResolution, WithoutAPreferredFlagTheLargestDisplayIDTimingIsTheCandidate) {
    const EDID edid = EDIDBuilder()
                          .baseTiming(cvt(1920, 1080))
                          .displayIDExtension({{cvt(2560, 1440), false, {}},
                                               {cvt(3840, 2160), false, {}},
                                               {cvt(2160, 3840), false, {}}})
                          .edid();
    EXPECT_EQ(edid.nativeResolution(), (Resolution{3840, 2160})) << "the earliest wins a tie";
}

TEST(NativeResolution, EqualAreasKeepTheBasePreferredResolution) {
    const EDID edid = EDIDBuilder()
                          .baseTiming(cvt(2560, 1440))
                          .displayIDExtension({{cvt(1440, 2560), true, {}}})
                          .edid();
    EXPECT_EQ(edid.nativeResolution(), (Resolution{2560, 1440}));
}

TEST(NativeResolution, WithoutABaseTimingTheDisplayIDCandidateIsNative) {
    const EDID edid = EDIDBuilder().productName("X").displayIDExtension({{cvt(5120, 2160), true, {}}}).edid();
    EXPECT_EQ(edid.preferredResolution(), std::nullopt);
    EXPECT_EQ(edid.nativeResolution(), (Resolution{5120, 2160}));
}

TEST(NativeResolution, AbsentWithoutAnyTiming) {
    EXPECT_EQ(EDIDBuilder().productName("X").edid().nativeResolution(), std::nullopt);
}

TEST(MonitorPreferredResolution, WithoutDisplayIDItIsTheBaseBlocksPreferredTiming) {
    EXPECT_EQ(ultrawide().monitorPreferredResolution(), (Resolution{3440, 1440}));
}

TEST(MonitorPreferredResolution, ADisplayIDTimingFlaggedPreferredWinsOverTheBaseBlock) {
    // A superwide: 2560×1440 first in the base block, its whole panel in DisplayID.
    const EDID edid = EDIDBuilder()
                          .baseTiming(cvt(2560, 1440))
                          .displayIDExtension({{cvt(3840, 1080), false, {}}, {cvt(5120, 1440), true, {}}})
                          .edid();
    EXPECT_EQ(edid.preferredResolution(), (Resolution{2560, 1440})) << "the base block's own notion stays";
    EXPECT_EQ(edid.monitorPreferredResolution(), (Resolution{5120, 1440}));
}

TEST(MonitorPreferredResolution, AFlaggedDisplayIDTimingWinsEvenWhenSmaller) {
    // Unlike the native resolution, the monitor's preference is not a size contest.
    const EDID edid = ultrawideBuilder().displayIDExtension({{cvt(1720, 1440), true, {}}}).edid();
    EXPECT_EQ(edid.nativeResolution(), (Resolution{3440, 1440}));
    EXPECT_EQ(edid.monitorPreferredResolution(), (Resolution{1720, 1440}));
}

TEST(MonitorPreferredResolution, UnflaggedDisplayIDTimingsLeaveTheBaseBlocksChoice) {
    const EDID edid = EDIDBuilder()
                          .baseTiming(cvt(2560, 1440))
                          .displayIDExtension({{cvt(5120, 1440), false, {}}})
                          .edid();
    EXPECT_EQ(edid.monitorPreferredResolution(), (Resolution{2560, 1440}));
}

TEST(MonitorPreferredResolution, AbsentWithoutAnyTiming) {
    EXPECT_EQ(EDIDBuilder().productName("X").edid().monitorPreferredResolution(), std::nullopt);
}
