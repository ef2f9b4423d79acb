// Every EDID of the corpus, split for its own native, for each panel the guess
// names and for every common wide panel: tryAddingSplit gives the EDID that
// addingSplit returns, or the very error it throws.

#include "Corpus.hpp"

#include <EDIDKit/RewriteResult.hpp>
#include <gtest/gtest.h>
#include <map>
#include <vector>

using namespace CorpusSupport;
using EDIDKit::EDID;
using EDIDKit::EDIDError;
using EDIDKit::Resolution;
using EDIDKit::SplitLayout;

namespace {

std::vector<Resolution> nativesToTry(const EDID& edid) {
    std::vector<Resolution> natives = Resolution::commonNatives();
    if (const auto native = edid.nativeResolution()) natives.push_back(*native);
    if (const auto guess = edid.nativeResolutionGuess())
        natives.insert(natives.end(), guess->candidates.begin(), guess->candidates.end());
    return natives;
}

} // namespace

TEST(CorpusTryAddingSplit, GivesWhatAddingSplitReturnsOrThrows) {
    ASSERT_GE(corpus().size(), 300u)
        << "the EDID corpus is missing or incomplete at " << corpusFolder();
    int made = 0;
    std::map<EDIDError::Kind, int> refused;
    for (const CorpusEDID& c : corpus()) {
        const EDID edid(c.bytes);
        for (const Resolution& native : nativesToTry(edid)) {
            SCOPED_TRACE(c.id + " split for a " + native.description() + " panel");
            const EDIDKit::RewriteResult result = edid.tryAddingSplit(SplitLayout::halves, native);
            try {
                const EDID split = edid.addingSplit(SplitLayout::halves, native);
                ++made;
                ASSERT_TRUE(result) << "refused: " << result.error()->description();
                EXPECT_EQ(result.value().bytes(), split.bytes());
            } catch (const EDIDError& error) {
                ++refused[error.kind()];
                ASSERT_FALSE(result) << "addingSplit threw " << error.description();
                EXPECT_EQ(*result.error(), error);
                EXPECT_EQ(result.error()->description(), error.description());
            }
        }
    }
    EXPECT_GT(made, 1000);
    // The corpus refuses in each way a real monitor can.
    for (const auto kind : {EDIDError::Kind::noCTAExtension, EDIDError::Kind::noFreeDescriptorSlot,
                            EDIDError::Kind::outOfRange, EDIDError::Kind::timingTooLarge})
        EXPECT_GT(refused[kind], 0) << "no refusal of kind " << static_cast<int>(kind);
}
