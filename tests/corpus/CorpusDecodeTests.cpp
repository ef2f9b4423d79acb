// Every EDID of the real-world corpus, read by the EDID model and compared
// with what an independent decoder read from the same bytes.

#include "Corpus.hpp"

#include <gtest/gtest.h>

#include <sstream>

using namespace CorpusSupport;
using EDIDKit::EDID;
using EDIDKit::Timing;

namespace {

std::string trimmed(std::string s) {
    const auto first = s.find_first_not_of(" \t");
    const auto last = s.find_last_not_of(" \t");
    return first == std::string::npos ? "" : s.substr(first, last - first + 1);
}

/// Runs `check` on every corpus EDID and reports each one that fails by id.
template <typename Check> void forEveryEDID(Check&& check) {
    ASSERT_GE(corpus().size(), 300u) << "the EDID corpus is missing or incomplete at " << corpusFolder();
    for (const CorpusEDID& c : corpus()) {
        SCOPED_TRACE("corpus EDID " + c.id);
        const EDID edid(c.bytes);
        check(c, edid);
    }
}

std::string show(const Timing& t) {
    std::ostringstream s;
    s << t.pixelClock10kHz << " " << t.width << "+" << t.hBlank << " (" << t.hFrontPorch << "/" << t.hSync
      << ") " << t.height << "+" << t.vBlank << " (" << t.vFrontPorch << "/" << t.vSync << ")";
    return s.str();
}

} // namespace

TEST(Corpus, EveryEDIDIsAcceptedByTheConstructor) {
    ASSERT_GE(corpus().size(), 300u) << "the EDID corpus is missing or incomplete at " << corpusFolder();
    for (const CorpusEDID& c : corpus()) EXPECT_NO_THROW(EDID{c.bytes}) << c.id;
}

TEST(Corpus, IdentityNumbersAreTheRawStoredValues) {
    forEveryEDID([](const CorpusEDID& c, const EDID& edid) {
        const auto& raw = c.expected.at("raw");
        EXPECT_EQ(edid.vendorID(), raw.at("vendorIDBigEndian").get<std::uint32_t>());
        EXPECT_EQ(edid.productID(), raw.at("productIDLE").get<std::uint32_t>());
        EXPECT_EQ(edid.serialNumber(), raw.at("serialLE").get<std::uint32_t>());
        EXPECT_EQ(edid.productID(), c.expected.at("productCode").get<std::uint32_t>());
    });
}

TEST(Corpus, ChecksumVerdictMatches) {
    forEveryEDID([](const CorpusEDID& c, const EDID& edid) {
        EXPECT_EQ(edid.isChecksumValid(), c.expected.at("checksumsValid").get<bool>());
    });
}

TEST(Corpus, ProductNameMatchesAfterTrimming) {
    forEveryEDID([](const CorpusEDID& c, const EDID& edid) {
        if (c.differsByDesign("productName", "prefix") || c.differsByDesign("productName", "skip")) return;
        const auto& printed = c.expected.at("productName");
        if (printed.is_null()) {
            EXPECT_EQ(edid.productName(), std::nullopt);
            return;
        }
        EXPECT_EQ(edid.productName(), trimmed(printed.get<std::string>()));
    });
}

TEST(Corpus, NameBytesThatTheReferenceDecoderStopsAtAreKeptBecauseOnlyALineFeedEndsAName) {
    int seen = 0;
    forEveryEDID([&](const CorpusEDID& c, const EDID& edid) {
        if (!c.differsByDesign("productName", "prefix")) return;
        ++seen;
        const std::string shown = trimmed(c.expected.at("productName").get<std::string>());
        ASSERT_TRUE(edid.productName());
        EXPECT_TRUE(edid.productName()->starts_with(shown));
        EXPECT_GT(edid.productName()->size(), shown.size());
    });
    EXPECT_GT(seen, 0);
}

TEST(Corpus, EveryDetailedTimingMatchesInAllNineFieldsAndOrder) {
    forEveryEDID([](const CorpusEDID& c, const EDID& edid) {
        std::vector<nlohmann::json> wanted;
        for (const auto& t : c.expected.at("detailedTimings"))
            if (!t.contains("productSkips")) wanted.push_back(t);
        const auto timings = edid.detailedTimings();
        ASSERT_EQ(timings.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (wanted[i].contains("notDecodedByEdidDecode")) {
                // Under 10 MHz the reference decoder shows only the bytes.
                EXPECT_EQ(timings[i].pixelClock10kHz, wanted[i].at("pixelClock10kHz").get<int>()) << "timing " << i;
                continue;
            }
            const Timing expected = expectedTiming(wanted[i]);
            EXPECT_EQ(timings[i], expected) << "timing " << i << ": got " << show(timings[i]) << ", expected "
                                            << show(expected);
        }
    });
}

TEST(Corpus, CTATimingsAfterADisplayDescriptorAreNotReadBecauseTheDescriptorAreaEndsAtTheFirstFreeSlot) {
    int seen = 0;
    forEveryEDID([&](const CorpusEDID& c, const EDID& edid) {
        if (!c.differsByDesign("detailedTimings", "entries")) return;
        ++seen;
        std::size_t skipped = 0;
        for (const auto& t : c.expected.at("detailedTimings")) skipped += t.contains("productSkips");
        EXPECT_GT(skipped, 0u);
        EXPECT_EQ(edid.detailedTimings().size(), c.expected.at("detailedTimings").size() - skipped);
    });
    EXPECT_GT(seen, 0);
}

TEST(Corpus, EveryDisplayIDTimingMatchesWithItsPreferredFlag) {
    forEveryEDID([](const CorpusEDID& c, const EDID& edid) {
        if (c.differsByDesign("displayIDTimings", "skip")) return;
        const auto& wanted = c.expected.at("displayIDTimings");
        const auto timings = edid.displayIDTimings();
        ASSERT_EQ(timings.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const Timing expected = expectedTiming(wanted[i]);
            EXPECT_EQ(timings[i].timing, expected) << "timing " << i << ": got " << show(timings[i].timing)
                                                   << ", expected " << show(expected);
            // Bit 7 of the options byte: "preferred" up to data block revision
            // 1, shown as "YCbCr 4:2:0" from revision 2; the product reads it
            // as preferred in both.
            const bool preferred = wanted[i].at("preferred").get<bool>() || wanted[i].value("ycbcr420Flag", false);
            EXPECT_EQ(timings[i].preferred, preferred) << "timing " << i;
        }
    });
}

TEST(Corpus, RangeLimitsMatch) {
    forEveryEDID([](const CorpusEDID& c, const EDID& edid) {
        if (c.differsByDesign("rangeLimits", "skip")) return;
        const auto& printed = c.expected.at("rangeLimits");
        const bool sound = !printed.is_null() && !printed.at("maxDotclockMHz").is_null() &&
                           printed.at("maxDotclockMHz").get<int>() != 0 &&
                           printed.at("vMaxHz").get<int>() >= printed.at("vMinHz").get<int>() &&
                           printed.at("hMaxKHz").get<int>() >= printed.at("hMinKHz").get<int>();
        if (!sound) {
            EXPECT_EQ(edid.rangeLimits(), std::nullopt);
            return;
        }
        const EDIDKit::RangeLimits expected{{printed.at("vMinHz").get<int>(), printed.at("vMaxHz").get<int>()},
                                            {printed.at("hMinKHz").get<int>(), printed.at("hMaxKHz").get<int>()},
                                            printed.at("maxDotclockMHz").get<int>() * 100};
        EXPECT_EQ(edid.rangeLimits(), expected);
    });
}

TEST(Corpus, RangeOffsetFlagsOfEDID13AreAppliedBecauseTheProductReadsThemInEveryVersion) {
    int seen = 0;
    forEveryEDID([&](const CorpusEDID& c, const EDID& edid) {
        if (!c.differsByDesign("rangeLimits", "skip")) return;
        const auto& printed = c.expected.at("rangeLimits");
        if (printed.is_null() || c.expected.at("edidVersion") != "1.3") return;
        ++seen;
        const auto limits = edid.rangeLimits();
        ASSERT_TRUE(limits);
        // Flags 0x08: +255 on the maximum horizontal rate only.
        EXPECT_EQ(limits->hRateKHz.upperBound, printed.at("hMaxKHz").get<int>() + 255);
        EXPECT_EQ(limits->hRateKHz.lowerBound, printed.at("hMinKHz").get<int>());
        EXPECT_EQ(limits->vRateHz, (EDIDKit::ClosedRange{printed.at("vMinHz").get<int>(), printed.at("vMaxHz").get<int>()}));
    });
    EXPECT_GT(seen, 0);
}

TEST(Corpus, NativeGuessNamesTheNativeResolutionFirstUnlessItIsClearlySplit) {
    forEveryEDID([](const CorpusEDID&, const EDID& edid) {
        const auto guess = edid.nativeResolutionGuess();
        ASSERT_EQ(guess.has_value(), edid.nativeResolution().has_value());
        if (!guess) return;
        ASSERT_FALSE(guess->candidates.empty());
        if (guess->kind != EDIDKit::NativeResolutionGuess::Kind::split) {
            EXPECT_EQ(guess->candidates.front(), *edid.nativeResolution());
        } else {
            EXPECT_EQ(guess->candidates, edid.nativeResolution()->commonNativesSplittingInto());
        }
    });
}
