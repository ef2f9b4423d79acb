// Properties that hold for every rewrite of every EDID: generated EDIDs of
// many shapes, rewritten in every way, checked for what must never change.

#include "RewriteInvariants.hpp"
#include "TestEDIDs.hpp"

#include <EDIDKit/RewriteResult.hpp>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

constexpr std::uint32_t seed = 0x5EED2026;

class Generator {
public:
    explicit Generator(std::uint32_t s) : random_(s) {}

    int upTo(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
    bool chance(int percent) { return upTo(100) < percent; }

    Resolution size() {
        static const std::vector<Resolution> sizes{
            {3440, 1440}, {1720, 1440}, {2560, 1440}, {1920, 1080}, {3840, 1080}, {1280, 720},
            {2560, 1080}, {1280, 1080}, {3840, 1600}, {1920, 1600}, {1920, 1200}, {1024, 768},
            {3840, 2160}, {1920, 2160}, {640, 480},   {1600, 900},  {4000, 1000}};
        return sizes[static_cast<std::size_t>(upTo(static_cast<int>(sizes.size())))];
    }

    Timing timing() {
        const Resolution r = size();
        Timing t = Timing::cvtReducedBlanking(r.width, r.height, chance(70) ? 60.0 : 30.0 + upTo(90));
        if (chance(20)) t.pixelClock10kHz = std::max(1, t.pixelClock10kHz - upTo(500));
        return t;
    }

    EDID edid() {
        EDIDBuilder b;
        b.screenSizeCM(upTo(256), upTo(256));
        const int baseTimings = upTo(3);
        for (int i = 0; i < baseTimings; ++i) b.baseTiming(timing());
        if (chance(70)) b.productName("Generated");
        if (chance(60)) b.rangeLimits({upTo(60), 40 + upTo(220), upTo(40), 40 + upTo(215), 1 + upTo(120),
                                       static_cast<std::uint8_t>(chance(20) ? 0x0A : 0)});
        const int extensions = upTo(4);
        for (int e = 0; e < extensions; ++e) {
            if (chance(70)) {
                Bytes dataBlocks(static_cast<std::size_t>(upTo(3) * 4), 0x40);
                std::vector<Timing> timings;
                const int count = upTo(7 - static_cast<int>(dataBlocks.size() + 17) / 18);
                for (int i = 0; i < count; ++i) timings.push_back(timing());
                b.ctaExtension(timings, dataBlocks);
            } else {
                std::vector<EDIDBuilder::DisplayIDEntry> entries;
                const int count = 1 + upTo(3);
                for (int i = 0; i < count; ++i) entries.push_back({timing(), chance(30), {}});
                b.displayIDExtension(entries, chance(30));
            }
        }
        Bytes bytes = b.build();
        // Now and then a damaged byte (past the header), with or without its checksum repaired.
        if (chance(10)) {
            const auto at = static_cast<std::size_t>(8 + upTo(static_cast<int>(bytes.size()) - 8));
            bytes[at] ^= static_cast<std::uint8_t>(1 + upTo(255));
            if (chance(50)) fixBlockChecksum(bytes, at / 128 * 128);
        }
        return EDID(bytes);
    }

    std::vector<Resolution> keeping() {
        std::vector<Resolution> k;
        const int n = upTo(3);
        for (int i = 0; i < n; ++i) k.push_back(size());
        return k;
    }

private:
    std::mt19937 random_;
};

void expectSoundRewrite(const EDID& before, const EDID& after, bool baseMayChange, std::size_t ctaBlocks) {
    EXPECT_EQ(TestSupport::rewriteViolation(before, after, baseMayChange, ctaBlocks), std::nullopt);
}

template <typename Rewrite>
std::optional<EDID> attempt(Rewrite&& rewrite, const std::set<EDIDError::Kind>& allowed) {
    try {
        return rewrite();
    } catch (const EDIDError& error) {
        EXPECT_TRUE(allowed.contains(error.kind())) << "unexpected error: " << error.description();
        return std::nullopt;
    }
}

using K = EDIDError::Kind;

} // namespace

/// Runs `rewrite` on 3000 generated cases (seeded, so a failure names its
/// iteration and replays) and returns how many rewrites succeeded.
template <typename Rewrite> int forGeneratedEDIDs(std::uint32_t caseSeed, Rewrite&& rewrite) {
    Generator g(caseSeed);
    int succeeded = 0;
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE("seed " + std::to_string(caseSeed) + ", iteration " + std::to_string(i));
        succeeded += rewrite(g) ? 1 : 0;
    }
    return succeeded;
}

std::set<EDIDError::Kind> rewriteErrors() {
    return {K::noPreferredTiming, K::noCTAExtension, K::noFreeDescriptorSlot, K::timingTooLarge, K::outOfRange};
}

TEST(RewriteProperties, AddingKeepsEveryOtherBlockAndListsTheTiming) {
    const int succeeded = forGeneratedEDIDs(seed, [](Generator& g) {
        const EDID edid = g.edid();
        const Timing t = g.timing();
        const auto result = attempt([&] { return edid.adding(t, g.keeping()); }, rewriteErrors());
        if (!result) return false;
        expectSoundRewrite(edid, *result, false, 1);
        const auto timings = result->detailedTimings();
        EXPECT_NE(std::find(timings.begin(), timings.end(), t), timings.end());
        return true;
    });
    EXPECT_GT(succeeded, 500);
}

TEST(RewriteProperties, PromotingMakesTheTimingPreferredAndNeverLosesTheOldOne) {
    const int succeeded = forGeneratedEDIDs(seed + 1, [](Generator& g) {
        const EDID edid = g.edid();
        const Timing t = g.timing();
        const auto result = attempt([&] { return edid.promotingToPreferred(t); }, rewriteErrors());
        if (!result) return false;
        expectSoundRewrite(edid, *result, true, 1);
        const auto timings = result->detailedTimings();
        EXPECT_EQ(timings.front(), t);
        const Timing old = edid.detailedTimings().front();
        EXPECT_NE(std::find(timings.begin() + 1, timings.end(), old), timings.end()) << "old preferred lost";
        return true;
    });
    EXPECT_GT(succeeded, 300);
}

TEST(RewriteProperties, AddingSplitListsNativeAndSplitAndIsIdempotent) {
    const int succeeded = forGeneratedEDIDs(seed + 2, [](Generator& g) {
        const EDID edid = g.edid();
        const Resolution native = g.chance(50) && edid.nativeResolution() ? *edid.nativeResolution() : g.size();
        const auto result = attempt([&] { return edid.addingSplit(SplitLayout::halves, native); }, rewriteErrors());
        if (!result) return false;
        expectSoundRewrite(edid, *result, true, 2);
        EXPECT_TRUE(result->hasTiming(native));
        EXPECT_TRUE(result->hasTiming(SplitLayout::halves.splitResolution(native)));
        EXPECT_EQ(result->addingSplit(SplitLayout::halves, native), *result) << "a second split changes nothing";
        return true;
    });
    EXPECT_GT(succeeded, 500);
}

TEST(RewriteProperties, TryAddingSplitGivesWhatAddingSplitReturnsOrThrows) {
    int refused = 0;
    const int made = forGeneratedEDIDs(seed + 4, [&](Generator& g) {
        const EDID edid = g.edid();
        const Resolution native =
            g.chance(50) && edid.nativeResolution() ? *edid.nativeResolution() : g.size();
        const RewriteResult result = edid.tryAddingSplit(SplitLayout::halves, native);
        try {
            const EDID split = edid.addingSplit(SplitLayout::halves, native);
            EXPECT_TRUE(result) << "addingSplit made it, tryAddingSplit refused: "
                                << result.error()->description();
            if (result) {
                EXPECT_EQ(result.value().bytes(), split.bytes());
            }
        } catch (const EDIDError& error) {
            ++refused;
            EXPECT_FALSE(result) << "addingSplit threw " << error.description();
            if (!result) {
                EXPECT_EQ(*result.error(), error);
            }
        }
        return result.hasValue();
    });
    EXPECT_GT(made, 500);
    EXPECT_GT(refused, 100);
}

TEST(RewriteProperties, MergingAddsTheOtherEDIDsFirstTiming) {
    const int succeeded = forGeneratedEDIDs(seed + 3, [](Generator& g) {
        const EDID full = g.edid();
        const EDID other = g.edid();
        const auto result = attempt([&] { return full.mergingSplitVersion(other); }, rewriteErrors());
        if (!result) return false;
        expectSoundRewrite(full, *result, false, 1);
        const auto timings = result->detailedTimings();
        EXPECT_NE(std::find(timings.begin(), timings.end(), other.detailedTimings().front()), timings.end());
        return true;
    });
    EXPECT_GT(succeeded, 300);
}

TEST(RewriteProperties, TheInvariantCheckCatchesABrokenRewrite) {
    const EDID edid = ultrawide();
    Bytes changedBase = edid.bytes();
    changedBase[21] = 99;
    EXPECT_EQ(TestSupport::rewriteViolation(edid, EDID(changedBase), false, 1),
              "the checksum of changed block 0 is wrong");
    fixBlockChecksum(changedBase, 0);
    EXPECT_EQ(TestSupport::rewriteViolation(edid, EDID(changedBase), false, 1), "the base block changed");
    EXPECT_EQ(TestSupport::rewriteViolation(edid, EDID(changedBase), true, 1), std::nullopt);
    Bytes shorter(edid.bytes().begin(), edid.bytes().begin() + 128);
    EXPECT_EQ(TestSupport::rewriteViolation(edid, EDID(shorter), true, 1), "the length changed");
}
