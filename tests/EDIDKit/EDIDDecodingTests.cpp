// An EDID is decoded once, when it is made: its copies, its temporaries and
// the EDIDs its rewrites make answer as their bytes say.

#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

EDID superwideWithDisplayID() {
    return EDIDBuilder()
        .baseTiming(cvt(3840, 1080))
        .ctaExtension({cvt(1920, 1080)})
        .displayIDExtension({{cvt(5120, 1440), true, {}}})
        .edid();
}

} // namespace

TEST(EDIDDecoding, TheListsOfATemporaryEDIDOutliveIt) {
    const Bytes bytes = superwideWithDisplayID().bytes();
    std::vector<Timing> detailed;
    for (const Timing& t : EDID(bytes).detailedTimings())
        detailed.push_back(t);
    std::vector<DisplayIDTiming> fromDisplayID;
    for (const DisplayIDTiming& t : EDID(bytes).displayIDTimings())
        fromDisplayID.push_back(t);
    std::vector<std::size_t> ctaBlocks;
    for (std::size_t start : EDID(bytes).ctaBlockStarts())
        ctaBlocks.push_back(start);

    EXPECT_EQ(detailed, (std::vector<Timing>{cvt(3840, 1080), cvt(1920, 1080)}));
    EXPECT_EQ(fromDisplayID, (std::vector<DisplayIDTiming>{{cvt(5120, 1440), true}}));
    EXPECT_EQ(ctaBlocks, std::vector<std::size_t>{128});
}

TEST(EDIDDecoding, ACopyAnswersAsTheOriginal) {
    const EDID original = superwideWithDisplayID();
    const EDID copy = original;
    EXPECT_EQ(copy, original);
    EXPECT_EQ(copy.detailedTimings(), original.detailedTimings());
    EXPECT_EQ(copy.displayIDTimings(), original.displayIDTimings());
    EXPECT_EQ(copy.nativeResolution(), (Resolution{5120, 1440}));
    EXPECT_EQ(copy.monitorPreferredResolution(), (Resolution{5120, 1440}));
    EXPECT_EQ(copy.preferredResolution(), (Resolution{3840, 1080}));
}

TEST(EDIDDecoding, EDIDsAreEqualWhenTheirBytesAre) {
    const EDID one = superwideWithDisplayID();
    const EDID other(one.bytes());
    EXPECT_EQ(one, other) << "made apart, decoded apart, equal bytes";
    Bytes changed = one.bytes();
    changed[12] ^= 1;
    EXPECT_NE(one, EDID(changed));
}

TEST(EDIDDecoding, ARewrittenEDIDAnswersForItsNewBytes) {
    const EDID edid = ultrawide();
    const EDID split = edid.addingSplit(SplitLayout::halves, {3440, 1440});
    const EDID reread(split.bytes());
    EXPECT_EQ(split.detailedTimings(), reread.detailedTimings());
    EXPECT_EQ(split.nativeResolutionGuess(), reread.nativeResolutionGuess());
    EXPECT_EQ(split.ctaDescriptorOffsets(128), reread.ctaDescriptorOffsets(128));
    EXPECT_TRUE(split.hasTiming({1720, 1440}));
    EXPECT_FALSE(edid.hasTiming({1720, 1440}));
}
