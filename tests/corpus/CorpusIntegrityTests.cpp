// Every EDID of the corpus: the wrong block checksums and the disagreeing
// extension counts the model finds are exactly those the reference decoder
// (edid-decode --check) reports, with the same values.

#include "Corpus.hpp"
#include "Process.hpp"

#include <EDIDKit/EDIDIntegrity.hpp>
#include <cstdio>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <tuple>

using namespace CorpusSupport;

namespace {

struct ReferenceIntegrity {
    std::set<std::tuple<std::size_t, unsigned, unsigned>>
        badChecksums; ///< block, stored, should be
    std::optional<std::pair<std::size_t, std::size_t>>
        extensionCount; ///< specified, found, when they differ
};

/// The checksum and extension count failures of `edid-decode --check`.
std::optional<ReferenceIntegrity> referenceIntegrity(const std::string& file) {
    const auto run = TestSupport::runProcess({"edid-decode", "--check", file});
    if (!run || run->output.find("EDID conformity:") == std::string::npos) return std::nullopt;
    ReferenceIntegrity found;
    const auto failures = run->output.find("\nFailures:\n");
    if (failures == std::string::npos) return found;
    std::istringstream lines(run->output.substr(failures));
    std::size_t block = 0;
    for (std::string line; std::getline(lines, line);) {
        std::size_t number = 0;
        unsigned stored = 0;
        unsigned expected = 0;
        std::size_t specified = 0;
        std::size_t present = 0;
        if (std::sscanf(line.c_str(), "Block %zu,", &number) == 1) block = number;
        if (std::sscanf(line.c_str(), "  Invalid checksum 0x%x (should be 0x%x).", &stored,
                        &expected) == 2)
            found.badChecksums.insert({block, stored, expected});
        const auto at = line.find("EDID specified ");
        if (at != std::string::npos &&
            std::sscanf(line.c_str() + at, "EDID specified %zu extension block(s), but found %zu",
                        &specified, &present) == 2)
            found.extensionCount = {specified, present};
    }
    return found;
}

} // namespace

TEST(CorpusIntegrity, ChecksumsAndExtensionCountsAreJudgedAsTheReferenceDecoderJudgesThem) {
    if (!TestSupport::isOnPath("edid-decode"))
        GTEST_SKIP() << "edid-decode is not installed, so the integrity findings were NOT compared "
                        "(Debian: apt-get install edid-decode; 'make test' installs it)";
    ASSERT_GE(corpus().size(), 300u)
        << "the EDID corpus is missing or incomplete at " << corpusFolder();
    int badChecksums = 0;
    int disagreeingCounts = 0;
    for (const CorpusEDID& c : corpus()) {
        const auto reference = referenceIntegrity(corpusFolder() + "/" + c.id + ".bin");
        ASSERT_TRUE(reference) << c.id << ": edid-decode --check gave no verdict";
        const auto integrity = EDIDKit::EDIDIntegrity::of(EDIDKit::EDID(c.bytes));
        std::set<std::tuple<std::size_t, unsigned, unsigned>> ours;
        for (const auto& bad : integrity.badChecksums)
            ours.insert({bad.block, bad.stored, bad.expected});
        EXPECT_EQ(ours, reference->badChecksums) << c.id;
        EXPECT_EQ(integrity.checksumsValid(), c.expected["checksumsValid"].get<bool>()) << c.id;
        if (integrity.extensionCountAgrees()) {
            EXPECT_FALSE(reference->extensionCount) << c.id;
        } else {
            EXPECT_EQ(reference->extensionCount,
                      std::make_pair(integrity.specifiedExtensions, integrity.presentExtensions))
                << c.id;
        }
        badChecksums += !integrity.checksumsValid();
        disagreeingCounts += !integrity.extensionCountAgrees();
    }
    EXPECT_EQ(badChecksums, 5) << "the corpus README counts 5 EDIDs with a wrong block checksum";
    EXPECT_GT(disagreeingCounts, 0);
}
