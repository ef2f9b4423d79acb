#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

template <typename F> EDIDError errorOf(F&& rewrite) {
    try {
        rewrite();
    } catch (const EDIDError& error) {
        return error;
    }
    ADD_FAILURE() << "the rewrite succeeded";
    return EDIDError::invalidHeader();
}

Bytes slice(const Bytes& b, std::size_t offset, std::size_t length = 18) {
    return {b.begin() + static_cast<std::ptrdiff_t>(offset),
            b.begin() + static_cast<std::ptrdiff_t>(offset + length)};
}

} // namespace

TEST(AddingSplit, AnEDIDWithNativeAndSplitComesBackByteIdentical) {
    const EDID edid = ultrawideBuilder().ctaExtension({cvt(1720, 1440)}).edid();
    EXPECT_EQ(edid.addingSplit(SplitLayout::halves, {3440, 1440}).bytes(), edid.bytes());
}

TEST(AddingSplit, ADisplayIDSplitTimingCountsAsPresent) {
    const EDID edid = ultrawideBuilder().displayIDExtension({{cvt(1720, 1440), false, {}}}).edid();
    EXPECT_EQ(edid.addingSplit(SplitLayout::halves, {3440, 1440}), edid);
}

TEST(AddingSplit, WithoutAnExtensionBlockFailsAsSoonAsATimingMustBePlaced) {
    const EDID baseOnly = ultrawideBuilder().edid();
    EXPECT_EQ(errorOf([&] { baseOnly.addingSplit(SplitLayout::halves, {3440, 1440}); }),
              EDIDError::noCTAExtension());
    const EDID halfOnly = EDIDBuilder().baseTiming(cvt(1720, 1440)).edid();
    EXPECT_EQ(errorOf([&] { halfOnly.addingSplit(SplitLayout::halves, {3440, 1440}); }),
              EDIDError::noCTAExtension());
}

TEST(AddingSplit, AddsTheSplitTimingToTheFirstFreeCTASlot) {
    const EDID edid = ultrawide();
    const EDID split = edid.addingSplit(SplitLayout::halves, {3440, 1440});
    EXPECT_EQ(split.detailedTimings().back(), cvt(1720, 1440));
    EXPECT_EQ(slice(split.bytes(), 0, 128), slice(edid.bytes(), 0, 128)) << "base block untouched";
    EXPECT_TRUE(split.isChecksumValid());
    // Half of an 80 cm × 34 cm screen.
    EXPECT_EQ(split.imageSizeMM({1720, 1440}), (ImageSize{400, 340}));
}

TEST(AddingSplit, MissingNativeIsPromotedAndTheOldPreferredMovesToTheCTABlock) {
    // A 3440×1440 panel latched in picture-by-picture mode reports only
    // 1720×1440, 60 cm wide in that mode.
    EDIDBuilder builder;
    builder.screenSizeCM(60, 34).baseTiming(cvt(1720, 1440)).productName("Wide").ctaExtension({});
    const EDID edid = builder.edid();
    const Bytes oldPreferred = slice(edid.bytes(), 54);

    const EDID split = edid.addingSplit(SplitLayout::halves, {3440, 1440});

    EXPECT_EQ(split.detailedTimings().front(), cvt(3440, 1440));
    EXPECT_EQ(slice(split.bytes(), 128 + 4), oldPreferred) << "old preferred byte for byte";
    EXPECT_EQ(split.bytes()[21], 120) << "60 cm at 1720 becomes 120 cm at 3440";
    EXPECT_EQ(split.bytes()[22], 34);
    EXPECT_TRUE(split.hasTiming({1720, 1440})) << "the split equals the old preferred, nothing added";
    EXPECT_EQ(split.detailedTimings().size(), 2u);
    EXPECT_TRUE(split.isChecksumValid());
}

TEST(AddingSplit, PromotedImageSizeUsesTheEDIDAsItWas) {
    EDIDBuilder builder;
    builder.screenSizeCM(60, 34).baseTiming(cvt(1720, 1440)).ctaExtension({});
    const EDID split = builder.edid().addingSplit(SplitLayout::halves, {3440, 1440});
    // 60 cm × 10 × 3440 / 1720 native = 1200 mm; 340 mm tall.
    EXPECT_EQ(split.imageSizeMM({3440, 1440}), (ImageSize{1200, 340}));
}

TEST(AddingSplit, RescaledScreenSizeClampsAt255) {
    EDIDBuilder builder;
    builder.screenSizeCM(200, 100).baseTiming(cvt(1720, 1440)).ctaExtension({});
    const EDID split = builder.edid().addingSplit(SplitLayout::halves, {3440, 1440});
    EXPECT_EQ(split.bytes()[21], 255);
    EXPECT_EQ(split.bytes()[22], 100);
}

TEST(AddingSplit, RangeLimitsThatRejectTheNativeTimingFail) {
    EDIDBuilder builder;
    builder.baseTiming(cvt(1720, 1440)).rangeLimits({48, 60, 30, 90, 20, 0}).ctaExtension({});
    EXPECT_EQ(errorOf([&] { builder.edid().addingSplit(SplitLayout::halves, {3440, 1440}); }),
              EDIDError::outOfRange(3440, 1440));
}

TEST(Adding, FullAreaOfProtectedTimingsHasNoFreeSlot) {
    // Six 3440×1440 timings (native) at different clocks fill the only CTA block.
    const EDID edid = ultrawideBuilder().ctaExtension(sixTimingsOf(3440, 1440)).edid();
    EXPECT_EQ(errorOf([&] { edid.adding(cvt(1720, 1440), {}); }), EDIDError::noFreeDescriptorSlot());
}

TEST(Adding, KeptResolutionsAreNotEvicted) {
    const std::vector<Timing> six(6, cvt(1920, 1080));
    const EDID edid = ultrawideBuilder().ctaExtension(six).edid();
    EXPECT_EQ(errorOf([&] { edid.adding(cvt(1720, 1440), {{1920, 1080}}); }),
              EDIDError::noFreeDescriptorSlot());
}

TEST(Adding, TheSmallerClockOfTwoEvictableEqualSizesIsReplaced) {
    Timing fast{7425, 1280, 370, 110, 40, 720, 30, 5, 5};
    Timing slow{6400, 1280, 370, 110, 40, 720, 30, 5, 5};
    const std::vector<Timing> timings{cvt(3440, 1440), cvt(3440, 1440), fast, slow, cvt(3440, 1440),
                                      cvt(3440, 1440)};
    const EDID edid = ultrawideBuilder().ctaExtension(timings).edid();
    const EDID result = edid.adding(cvt(1720, 1440), {});
    const std::size_t slowOffset = 128 + 4 + 3 * 18;
    EXPECT_EQ(Timing::fromDescriptor(slice(result.bytes(), slowOffset)), cvt(1720, 1440));
    EXPECT_EQ(Timing::fromDescriptor(slice(result.bytes(), slowOffset - 18)), fast);
    EXPECT_TRUE(result.isChecksumValid());
    // Only the replaced descriptor and the checksum changed.
    for (std::size_t i = 0; i < edid.bytes().size(); ++i) {
        const bool replaced = i >= slowOffset && i < slowOffset + 18;
        if (!replaced && i != 255) {
            EXPECT_EQ(result.bytes()[i], edid.bytes()[i]) << "byte " << i;
        }
    }
}

TEST(Adding, TheSmallestAreaIsEvictedFirst) {
    const std::vector<Timing> timings{cvt(1920, 1080), cvt(640, 480), cvt(1280, 720), cvt(3440, 1440),
                                      cvt(3440, 1440), cvt(3440, 1440)};
    const EDID result = ultrawideBuilder().ctaExtension(timings).edid().adding(cvt(1720, 1440), {});
    EXPECT_EQ(Timing::fromDescriptor(slice(result.bytes(), 128 + 4 + 18)), cvt(1720, 1440));
}

TEST(Adding, AnIdenticalTimingReturnsTheInputEvenIfRangeLimitsRejectIt) {
    EDIDBuilder builder;
    builder.baseTiming(cvt(3440, 1440)).rangeLimits({48, 60, 30, 90, 10, 0}).ctaExtension({cvt(1720, 1440)});
    const EDID edid = builder.edid();
    ASSERT_FALSE(edid.rangeLimits()->accepts(cvt(1720, 1440)));
    EXPECT_EQ(edid.adding(cvt(1720, 1440), {}).bytes(), edid.bytes());
}

TEST(AddingSplit, ANativeWiderThanADescriptorCanHoldFails) {
    const EDID half = EDIDBuilder().baseTiming(cvt(2560, 1440)).ctaExtension({}).edid();
    EXPECT_EQ(errorOf([&] { half.addingSplit(SplitLayout::halves, {5120, 1440}); }),
              EDIDError::timingTooLarge(5120, 1440));
}

TEST(Adding, ATimingTooLargeForADescriptorFails) {
    const EDID edid = ultrawide();
    EXPECT_EQ(errorOf([&] { edid.adding(cvt(5120, 2880), {}); }), EDIDError::timingTooLarge(5120, 2880));
}

TEST(Adding, TheFreeSlotRouteClearsEverythingAfterTheNewTiming) {
    // A display descriptor after the one timing: its slot counts as free and
    // whatever it held is wiped after the new timing is written over it.
    Bytes bytes = ultrawideBuilder().ctaExtension({cvt(1920, 1080), cvt(1280, 720), cvt(1600, 900)}).build();
    bytes[128 + 22] = 0;
    bytes[128 + 23] = 0;
    fixBlockChecksum(bytes, 128);
    const EDID result = EDID(bytes).adding(cvt(1720, 1440), {});
    EXPECT_EQ(Timing::fromDescriptor(slice(result.bytes(), 128 + 22)), cvt(1720, 1440));
    for (std::size_t i = 128 + 40; i < 255; ++i) EXPECT_EQ(result.bytes()[i], 0) << "byte " << i;
    EXPECT_TRUE(blockChecksumHolds(result.bytes(), 128));
}

TEST(PromotingToPreferred, WithoutATimingInSlot54Fails) {
    const EDID edid = EDIDBuilder().productName("X").ctaExtension({}).edid();
    EXPECT_EQ(errorOf([&] { edid.promotingToPreferred(cvt(3440, 1440)); }), EDIDError::noPreferredTiming());
}

TEST(PromotingToPreferred, ATimingTooLargeFails) {
    EXPECT_EQ(errorOf([&] { ultrawide().promotingToPreferred(cvt(7680, 2160)); }),
              EDIDError::timingTooLarge(7680, 2160));
}

TEST(PromotingToPreferred, TheOldPreferredKeepsItsOwnImageSizeAndFlags) {
    Bytes bytes = ultrawide().bytes();
    bytes[54 + 17] = 0x1E; // +hsync +vsync
    fixBlockChecksum(bytes, 0);
    const EDID edid(bytes);
    const EDID result = edid.promotingToPreferred(cvt(2560, 1440));
    EXPECT_EQ(slice(result.bytes(), 128 + 4 + 18), slice(bytes, 54));
}

TEST(MergingSplitVersion, AddsTheOtherEDIDsFirstTiming) {
    const EDID full = ultrawide();
    const EDID splitMode = EDIDBuilder().baseTiming(cvt(1720, 1440)).baseTiming(cvt(1280, 720)).edid();
    const EDID merged = full.mergingSplitVersion(splitMode);
    EXPECT_TRUE(merged.hasTiming({1720, 1440}));
    EXPECT_FALSE(merged.hasTiming({1280, 720}));
    EXPECT_EQ(merged.preferredResolution(), (Resolution{3440, 1440}));
}

TEST(MergingSplitVersion, AnEDIDWithoutTimingsCannotBeMerged) {
    const EDID empty = EDIDBuilder().productName("X").edid();
    EXPECT_EQ(errorOf([&] { ultrawide().mergingSplitVersion(empty); }), EDIDError::noPreferredTiming());
}

TEST(HasTiming, RefreshRateIsNotCompared) {
    Timing slow = cvt(1720, 1440);
    slow.pixelClock10kHz /= 2;
    const EDID edid = ultrawideBuilder().ctaExtension({slow}).edid();
    EXPECT_TRUE(edid.hasTiming({1720, 1440}));
    EXPECT_FALSE(edid.hasTiming({1720, 1441}));
}

TEST(ImageSizeMM, AbsentWhenNoDescriptorHasTheResolution) {
    EXPECT_EQ(ultrawide().imageSizeMM({1720, 1440}), std::nullopt);
    EXPECT_EQ(ultrawide().imageSizeMM({3440, 1440}), (ImageSize{800, 340}));
}
