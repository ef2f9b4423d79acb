// Feeds arbitrary bytes to the EDID model: construction, every accessor, the
// native guess, the split rewrite with the guessed and a derived native (asked
// for with and without an exception, which must agree), and merging two
// halves of the input. Any broken invariant aborts.

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/RewriteResult.hpp>

#include "FuzzCheck.hpp"
#include "RewriteInvariants.hpp"

#include <cstdio>
#include <cstdlib>
#include <optional>

using namespace EDIDKit;
using FuzzCheck::broken;
using FuzzCheck::require;

namespace {

std::optional<EDID> construct(Bytes bytes) {
    try {
        return EDID(std::move(bytes));
    } catch (const EDIDError& error) {
        require(error.kind() == EDIDError::Kind::invalidLength || error.kind() == EDIDError::Kind::invalidHeader,
                "construction fails only for length or header");
        return std::nullopt;
    }
}

bool isRewriteError(const EDIDError& error) {
    return error.kind() != EDIDError::Kind::invalidLength && error.kind() != EDIDError::Kind::invalidHeader;
}

void readEverything(const EDID& edid) {
    (void)edid.isChecksumValid();
    (void)edid.vendorID();
    (void)edid.productID();
    (void)edid.serialNumber();
    if (const auto name = edid.productName()) require(name->size() <= 13 * 3, "a name is at most 13 repaired bytes");
    const auto preferred = edid.preferredResolution();
    const auto native = edid.nativeResolution();
    require(!preferred || native, "a preferred timing means a native resolution");
    if (const auto limits = edid.rangeLimits()) {
        require(limits->vRateHz.lowerBound <= limits->vRateHz.upperBound, "vertical range is ordered");
        require(limits->hRateKHz.lowerBound <= limits->hRateKHz.upperBound, "horizontal range is ordered");
        require(limits->maxPixelClock10kHz > 0, "range limits have a pixel clock");
    }
    const auto timings = edid.detailedTimings();
    for (const Timing& t : timings) {
        require(t.pixelClock10kHz > 0, "detailed timings have a clock");
        (void)t.refreshRate();
        (void)t.hRateKHz();
    }
    if (preferred) require(!timings.empty() && timings.front().resolution() == *preferred, "preferred is first");
    (void)edid.displayIDTimings();
    for (std::size_t block : edid.ctaBlockStarts()) {
        const auto slots = edid.ctaDescriptorOffsets(block);
        const std::size_t checksum = block + EDID::blockSize - 1;
        for (std::size_t o : slots.occupied)
            require(o + EDID::descriptorSize <= checksum, "occupied slots end before the checksum");
        if (slots.free)
            require(*slots.free + EDID::descriptorSize <= checksum,
                    "the free slot ends before the checksum");
    }
    const auto guess = edid.nativeResolutionGuess();
    require(guess.has_value() == native.has_value(), "a guess exactly when there is a native resolution");
    if (guess) {
        require(!guess->candidates.empty(), "a guess has candidates");
        if (guess->kind != NativeResolutionGuess::Kind::split)
            require(guess->candidates.front() == *native, "full and uncertain guesses start with the native");
    }
}

/// A size whose CVT timing has a pixel clock: anything smaller cannot be
/// stored as a detailed timing (a zero clock marks a display descriptor).
bool storable(Resolution r) { return Timing::cvtReducedBlanking(r.width, r.height, 60.0).pixelClock10kHz > 0; }

void trySplit(const EDID& edid, Resolution native) {
    if (native.width <= 0 || native.height <= 0) return;
    // Asked without an exception, the split is the same EDID, or the same refusal.
    const RewriteResult asked = edid.tryAddingSplit(SplitLayout::halves, native);
    try {
        const EDID split = edid.addingSplit(SplitLayout::halves, native);
        require(asked.hasValue() && *asked == split, "tryAddingSplit makes the EDID addingSplit makes");
        if (const auto problem = TestSupport::rewriteViolation(edid, split, true, 2)) broken(*problem);
        const Resolution half = SplitLayout::halves.splitResolution(native);
        if (storable(native)) require(split.hasTiming(native), "the split EDID lists the native timing");
        if (storable(half)) require(split.hasTiming(half), "the split EDID lists the split");
        readEverything(split);
    } catch (const EDIDError& error) {
        require(isRewriteError(error), "a rewrite fails only with a rewrite error");
        require(!asked.hasValue() && *asked.error() == error, "tryAddingSplit refuses for the reason addingSplit throws");
    }
}

void tryMerge(const EDID& full, const EDID& other) {
    try {
        const EDID merged = full.mergingSplitVersion(other);
        if (const auto problem = TestSupport::rewriteViolation(full, merged, false, 1)) broken(*problem);
        const auto timings = merged.detailedTimings();
        require(std::find(timings.begin(), timings.end(), other.detailedTimings().front()) != timings.end(),
                "the merged EDID lists the other EDID's first timing");
    } catch (const EDIDError& error) {
        require(isRewriteError(error), "a merge fails only with a rewrite error");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes input(data, data + size);
    try {
        (void)bytesFromEDIDInput(input);
    } catch (const EDIDTextError&) {
    }
    const auto edid = construct(input);
    if (!edid) return 0;
    readEverything(*edid);
    if (const auto guess = edid->nativeResolutionGuess()) {
        trySplit(*edid, guess->kind == NativeResolutionGuess::Kind::full ? guess->candidates.front()
                                                                          : guess->candidates.back());
        const Resolution native = *edid->nativeResolution();
        trySplit(*edid, {native.width * 2, native.height});
    }
    tryMerge(*edid, *edid);
    // Two halves of the input, each at a block boundary.
    if (edid->blockCount() >= 2) {
        const auto half = static_cast<std::ptrdiff_t>(edid->blockCount() / 2 * EDID::blockSize);
        const auto first = construct(Bytes(input.begin(), input.begin() + half));
        const auto second = construct(Bytes(input.begin() + half, input.end()));
        if (first && second) tryMerge(*first, *second);
    }
    return 0;
}
