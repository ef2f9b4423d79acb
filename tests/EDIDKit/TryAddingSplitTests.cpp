// Asking for the split without an exception: the same verdict, the same EDID
// and the same reason as addingSplit, handed back as a value.

#include "TestEDIDs.hpp"

#include <EDIDKit/RewriteResult.hpp>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

/// The error the throwing form throws, if it throws.
std::optional<EDIDError> thrownBy(const EDID& edid, SplitLayout layout, Resolution native) {
    try {
        (void)edid.addingSplit(layout, native);
    } catch (const EDIDError& error) {
        return error;
    }
    return std::nullopt;
}

void expectRefusal(const EDID& edid, Resolution native, const EDIDError& expected) {
    const RewriteResult result = edid.tryAddingSplit(SplitLayout::halves, native);
    EXPECT_FALSE(result);
    EXPECT_FALSE(result.hasValue());
    ASSERT_NE(result.error(), nullptr);
    EXPECT_EQ(*result.error(), expected);
    EXPECT_EQ(result.error()->description(), expected.description());
    EXPECT_EQ(thrownBy(edid, SplitLayout::halves, native), expected)
        << "addingSplit throws the same";
}

} // namespace

TEST(TryAddingSplit, GivesTheSplitEDIDThatAddingSplitReturns) {
    const EDID edid = ultrawide();
    const RewriteResult result = edid.tryAddingSplit(SplitLayout::halves, {3440, 1440});
    ASSERT_TRUE(result);
    EXPECT_EQ(result.error(), nullptr);
    EXPECT_EQ(result.value(), edid.addingSplit(SplitLayout::halves, {3440, 1440}));
    EXPECT_TRUE(result->hasTiming({1720, 1440}));
    EXPECT_FALSE(edid.hasTiming({1720, 1440})) << "the input is left as it was";
}

TEST(TryAddingSplit, AnEDIDWithNativeAndSplitComesBackEqual) {
    const EDID edid = ultrawideBuilder().ctaExtension({cvt(1720, 1440)}).edid();
    const RewriteResult result = edid.tryAddingSplit(SplitLayout::halves, {3440, 1440});
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, edid);
}

TEST(TryAddingSplit, PromotesAMissingNativeAsAddingSplitDoes) {
    EDIDBuilder builder;
    builder.screenSizeCM(60, 34).baseTiming(cvt(1720, 1440)).productName("Wide").ctaExtension({});
    const EDID edid = builder.edid();
    const RewriteResult result = edid.tryAddingSplit(SplitLayout::halves, {3440, 1440});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->bytes(), edid.addingSplit(SplitLayout::halves, {3440, 1440}).bytes());
    EXPECT_EQ(result->preferredResolution(), (Resolution{3440, 1440}));
}

TEST(TryAddingSplit, PromotesAMissingNativeAndAddsTheSplit) {
    // Neither the 2560×1080 native nor its 1280×1080 half is listed: the
    // native is promoted, then the half is added.
    const EDID edid =
        EDIDBuilder().screenSizeCM(60, 30).baseTiming(cvt(1920, 1080)).ctaExtension({}).edid();
    const RewriteResult result = edid.tryAddingSplit(SplitLayout::halves, {2560, 1080});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->bytes(), edid.addingSplit(SplitLayout::halves, {2560, 1080}).bytes());
    EXPECT_EQ(result->preferredResolution(), (Resolution{2560, 1080}));
    EXPECT_TRUE(result->hasTiming({1920, 1080}));
    EXPECT_TRUE(result->hasTiming({1280, 1080}));
}

TEST(TryAddingSplit, WithoutAnExtensionBlockSaysSo) {
    expectRefusal(ultrawideBuilder().edid(), {3440, 1440}, EDIDError::noCTAExtension());
    expectRefusal(EDIDBuilder().baseTiming(cvt(1720, 1440)).edid(), {3440, 1440},
                  EDIDError::noCTAExtension());
}

TEST(TryAddingSplit, RangeLimitsThatRejectTheNativeAreTheReason) {
    EDIDBuilder builder;
    builder.baseTiming(cvt(1720, 1440)).rangeLimits({48, 60, 30, 90, 20, 0}).ctaExtension({});
    expectRefusal(builder.edid(), {3440, 1440}, EDIDError::outOfRange(3440, 1440));
}

TEST(TryAddingSplit, RangeLimitsThatRejectOnlyTheSplitAreTheReason) {
    // 3440×1440 is listed, so only the synthesised 1720×1440 half (88.8 kHz)
    // meets the limits, which stop at 80 kHz.
    EDIDBuilder builder;
    builder.baseTiming(cvt(3440, 1440)).rangeLimits({48, 60, 30, 80, 60, 0}).ctaExtension({});
    const EDID edid = builder.edid();
    ASSERT_FALSE(edid.rangeLimits()->accepts(cvt(1720, 1440)));
    expectRefusal(edid, {3440, 1440}, EDIDError::outOfRange(1720, 1440));
}

TEST(TryAddingSplit, ANativeWiderThanADescriptorCanHoldIsTheReason) {
    const EDID half = EDIDBuilder().baseTiming(cvt(2560, 1440)).ctaExtension({}).edid();
    expectRefusal(half, {5120, 1440}, EDIDError::timingTooLarge(5120, 1440));
}

TEST(TryAddingSplit, NoPreferredTimingToMoveAsideIsTheReason) {
    const EDID edid = EDIDBuilder().productName("X").ctaExtension({}).edid();
    expectRefusal(edid, {3440, 1440}, EDIDError::noPreferredTiming());
}

TEST(TryAddingSplit, ACTABlockFullOfKeptTimingsIsTheReason) {
    expectRefusal(ultrawideBuilder().ctaExtension(sixTimingsOf(3440, 1440)).edid(), {3440, 1440},
                  EDIDError::noFreeDescriptorSlot());
}

TEST(TryAddingSplit, TheOldPreferredFindingNoSlotIsTheReason) {
    // The native must be promoted, and every CTA timing has the size of the
    // preferred timing that would move aside, so none can be evicted for it.
    const EDID edid =
        EDIDBuilder().baseTiming(cvt(1720, 1440)).ctaExtension(sixTimingsOf(1720, 1440)).edid();
    ASSERT_FALSE(edid.hasTiming({3440, 1440}));
    expectRefusal(edid, {3440, 1440}, EDIDError::noFreeDescriptorSlot());
}

TEST(TryAddingSplit, ALayoutWithoutPartsIsStillAProgrammingError) {
    const EDID edid = ultrawide();
    EXPECT_THROW((void)edid.tryAddingSplit(SplitLayout{0}, {3440, 1440}), std::logic_error);
}

TEST(RewriteResult, ValueOfARefusalThrowsTheReason) {
    const RewriteResult refused =
        ultrawideBuilder().edid().tryAddingSplit(SplitLayout::halves, {3440, 1440});
    try {
        (void)refused.value();
        ADD_FAILURE() << "value() of a refusal returned";
    } catch (const EDIDError& error) {
        EXPECT_EQ(error, EDIDError::noCTAExtension());
    }
    EXPECT_THROW((void)RewriteResult(refused).value(), EDIDError)
        << "the moved-from form throws too";
}

TEST(RewriteResult, AMadeSplitHasNoReason) {
    const RewriteResult made = ultrawide().tryAddingSplit(SplitLayout::halves, {3440, 1440});
    EXPECT_TRUE(made.hasValue());
    EXPECT_EQ(made.error(), nullptr);
    const EDID moved = RewriteResult(made).value();
    EXPECT_EQ(moved, made.value());
}
