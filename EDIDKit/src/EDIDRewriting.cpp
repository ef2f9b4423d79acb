// The rewrites that turn a monitor's EDID into the override the system writes:
// each returns a new, re-validated EDID and never changes its input.

#include "EDIDLayout.hpp"

#include <EDIDKit/EDID.hpp>
#include <algorithm>
#include <unordered_set>

namespace EDIDKit {

namespace {

using Layout::blockSize;
using Layout::descriptorSize;
using Layout::horizontalSizeCM;
using Layout::verticalSizeCM;
constexpr std::size_t preferredSlot = Layout::preferredTimingSlot;
constexpr double splitRefreshHz = 60.0;

/// `value` × `numerator` / `denominator`, truncated and capped; 0 when the
/// denominator is not positive (a timing without width cannot be scaled).
int scaled(int value, int numerator, int denominator, int cap) {
    if (denominator <= 0) return 0;
    const long long result = static_cast<long long>(value) * numerator / denominator;
    return static_cast<int>(std::clamp<long long>(result, 0, cap));
}

} // namespace

EDID EDID::addingSplit(SplitLayout layout, Resolution ofNative) const {
    EDID result = *this;
    if (!result.hasTiming(ofNative))
        result = result.promotingToPreferred(
            Timing::cvtReducedBlanking(ofNative.width, ofNative.height, splitRefreshHz));
    const Resolution split = layout.splitResolution(ofNative);
    if (!result.hasTiming(split))
        result =
            result.adding(Timing::cvtReducedBlanking(split.width, split.height, splitRefreshHz),
                          {ofNative, split});
    return result;
}

EDID EDID::mergingSplitVersion(const EDID& other) const {
    const auto timings = other.detailedTimings();
    if (timings.empty()) throw EDIDError::noPreferredTiming();
    return adding(timings.front(), {});
}

EDID EDID::adding(const Timing& timing, const std::vector<Resolution>& keeping) const {
    const auto existing = detailedTimings();
    if (std::find(existing.begin(), existing.end(), timing) != existing.end()) return *this;
    if (!timing.fitsDescriptor()) throw EDIDError::timingTooLarge(timing.width, timing.height);
    if (const auto limits = rangeLimits(); limits && !limits->accepts(timing))
        throw EDIDError::outOfRange(timing.width, timing.height);
    std::vector<Resolution> keep{timing.resolution()};
    keep.insert(keep.end(), keeping.begin(), keeping.end());
    return placing(timing.descriptorBytes(imageSize(timing)), keep);
}

EDID EDID::promotingToPreferred(const Timing& timing) const {
    const auto old = timingAt(preferredSlot);
    if (!old) throw EDIDError::noPreferredTiming();
    if (!timing.fitsDescriptor()) throw EDIDError::timingTooLarge(timing.width, timing.height);
    if (const auto limits = rangeLimits(); limits && !limits->accepts(timing))
        throw EDIDError::outOfRange(timing.width, timing.height);

    std::array<std::uint8_t, descriptorSize> oldBytes{};
    std::copy_n(bytes_.begin() + preferredSlot, descriptorSize, oldBytes.begin());

    Bytes rewritten = bytes_;
    const auto descriptor = timing.descriptorBytes(imageSize(timing));
    std::copy(descriptor.begin(), descriptor.end(), rewritten.begin() + preferredSlot);
    // The screen size follows the new preferred timing. A previous timing
    // without width or height gives no scale, and the size stays as it was.
    if (old->width > 0)
        rewritten[horizontalSizeCM] =
            static_cast<std::uint8_t>(scaled(at(horizontalSizeCM), timing.width, old->width, 255));
    if (old->height > 0)
        rewritten[verticalSizeCM] =
            static_cast<std::uint8_t>(scaled(at(verticalSizeCM), timing.height, old->height, 255));
    fixBlockChecksum(rewritten, 0);

    return EDID(std::move(rewritten)).placing(oldBytes, {timing.resolution(), old->resolution()});
}

ImageSize EDID::imageSize(const Timing& timing) const {
    const auto native = nativeResolution();
    if (!native) return {};
    return {scaled(at(horizontalSizeCM) * 10, timing.width, native->width, 4095),
            scaled(at(verticalSizeCM) * 10, timing.height, native->height, 4095)};
}

EDID EDID::placing(const std::array<std::uint8_t, 18>& descriptor,
                   const std::vector<Resolution>& keeping) const {
    const auto blocks = ctaBlockStarts();
    if (blocks.empty()) throw EDIDError::noCTAExtension();

    Bytes rewritten = bytes_;
    for (std::size_t block : blocks) {
        const auto free = ctaDescriptorOffsets(block).free;
        if (!free) continue;
        std::copy(descriptor.begin(), descriptor.end(),
                  rewritten.begin() + static_cast<std::ptrdiff_t>(*free));
        // Whatever followed the free slot (padding or a display descriptor) is
        // cleared, so that the descriptor area ends cleanly after the new timing.
        const std::size_t checksumOffset = block + blockSize - 1;
        std::fill(rewritten.begin() + static_cast<std::ptrdiff_t>(*free + descriptorSize),
                  rewritten.begin() + static_cast<std::ptrdiff_t>(checksumOffset), std::uint8_t{0});
        fixBlockChecksum(rewritten, block);
        return EDID(std::move(rewritten));
    }

    // No free slot anywhere: replace the least valuable timing that nobody needs.
    std::unordered_set<Resolution> keep(keeping.begin(), keeping.end());
    if (const auto native = nativeResolution()) keep.insert(*native);
    if (const auto preferred = preferredResolution()) keep.insert(*preferred);
    struct Candidate {
        std::size_t block;
        std::size_t offset;
        Timing timing;
    };
    std::optional<Candidate> victim;
    const auto lessValuable = [](const Timing& a, const Timing& b) {
        const long long areaA = static_cast<long long>(a.width) * a.height;
        const long long areaB = static_cast<long long>(b.width) * b.height;
        if (areaA != areaB) return areaA < areaB;
        return a.pixelClock10kHz < b.pixelClock10kHz;
    };
    for (std::size_t block : blocks) {
        for (std::size_t offset : ctaDescriptorOffsets(block).occupied) {
            const auto t = timingAt(offset);
            if (!t || keep.contains(t->resolution())) continue;
            if (!victim || lessValuable(*t, victim->timing)) victim = Candidate{block, offset, *t};
        }
    }
    if (!victim) throw EDIDError::noFreeDescriptorSlot();
    std::copy(descriptor.begin(), descriptor.end(),
              rewritten.begin() + static_cast<std::ptrdiff_t>(victim->offset));
    fixBlockChecksum(rewritten, victim->block);
    return EDID(std::move(rewritten));
}

EDID EDID::fixingChecksums() const {
    Bytes fixed = bytes_;
    for (std::size_t block = 0; block < blockCount(); ++block)
        fixBlockChecksum(fixed, block * blockSize);
    return EDID(std::move(fixed));
}

} // namespace EDIDKit
