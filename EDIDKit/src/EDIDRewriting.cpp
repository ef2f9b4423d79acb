// The rewrites that turn a monitor's EDID into the override the system writes:
// each returns a new EDID and never changes its input. The checks run on what
// the input's decoding already knows, and the bytes are copied only once the
// rewrite is known to succeed; a rewrite that cannot be made says why as a value.

#include "DecodedEDID.hpp"
#include "EDIDLayout.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/RewriteResult.hpp>
#include <algorithm>
#include <variant>

namespace EDIDKit {

namespace {

using Layout::blockSize;
using Layout::descriptorSize;
using Layout::horizontalSizeCM;
using Layout::verticalSizeCM;
constexpr std::size_t preferredSlot = Layout::preferredTimingSlot;
constexpr double splitRefreshHz = 60.0;
using Descriptor = std::array<std::uint8_t, descriptorSize>;

/// `value` × `numerator` / `denominator`, truncated and capped; 0 when the
/// denominator is not positive (a timing without width cannot be scaled).
int scaled(int value, int numerator, int denominator, int cap) {
    if (denominator <= 0) return 0;
    const long long result = static_cast<long long>(value) * numerator / denominator;
    return static_cast<int>(std::clamp<long long>(result, 0, cap));
}

/// The sizes a placed descriptor must not evict: the native and preferred
/// resolutions of the EDID it goes into, the new timing's own, and any others.
struct KeptSizes {
    std::optional<Resolution> native;
    std::optional<Resolution> preferred;
    Resolution added;
    std::span<const Resolution> others;

    bool contains(Resolution r) const {
        return r == native || r == preferred || r == added ||
               std::find(others.begin(), others.end(), r) != others.end();
    }
};

/// Where a descriptor goes in a CTA-861 block.
struct Placement {
    std::size_t block = 0;
    std::size_t offset = 0;
    /// A free slot: whatever follows it in the block is cleared.
    bool freeSlot = false;
};

/// The first free slot of the first CTA-861 block that has one; else the
/// least valuable CTA timing whose size is not kept (smallest area, then
/// smallest pixel clock, then the first).
std::variant<Placement, EDIDError> placementIn(const Bytes& bytes, const DecodedEDID& decoded,
                                               const KeptSizes& kept) {
    if (decoded.ctaBlockStarts.empty()) return EDIDError::noCTAExtension();
    if (const auto free = decoded.firstFreeCTASlot)
        return Placement{*free / blockSize * blockSize, *free, true};

    std::optional<Placement> victim;
    Timing victimTiming;
    const auto lessValuable = [](const Timing& a, const Timing& b) {
        const long long areaA = static_cast<long long>(a.width) * a.height;
        const long long areaB = static_cast<long long>(b.width) * b.height;
        if (areaA != areaB) return areaA < areaB;
        return a.pixelClock10kHz < b.pixelClock10kHz;
    };
    for (std::size_t block : decoded.ctaBlockStarts) {
        visitCTADescriptorSlots(bytes, block, [&](std::size_t offset) {
            const auto t = Timing::fromDescriptor(std::span(bytes).subspan(offset, descriptorSize));
            if (!t || kept.contains(t->resolution())) return;
            if (!victim || lessValuable(*t, victimTiming)) {
                victim = Placement{block, offset, false};
                victimTiming = *t;
            }
        });
    }
    if (!victim) return EDIDError::noFreeDescriptorSlot();
    return *victim;
}

void place(Bytes& bytes, const Placement& at, const Descriptor& descriptor) {
    std::copy(descriptor.begin(), descriptor.end(),
              bytes.begin() + static_cast<std::ptrdiff_t>(at.offset));
    // Whatever followed a free slot (padding or a display descriptor) is
    // cleared, so that the descriptor area ends cleanly after the new timing.
    if (at.freeSlot)
        std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(at.offset + descriptorSize),
                  bytes.begin() + static_cast<std::ptrdiff_t>(at.block + Layout::checksumOffset),
                  std::uint8_t{0});
    fixBlockChecksum(bytes, at.block);
}

/// Why `timing` cannot go into an EDID with these range limits, if it cannot.
std::optional<EDIDError> refusal(const Timing& timing, const std::optional<RangeLimits>& limits) {
    if (!timing.fitsDescriptor()) return EDIDError::timingTooLarge(timing.width, timing.height);
    if (limits && !limits->accepts(timing))
        return EDIDError::outOfRange(timing.width, timing.height);
    return std::nullopt;
}

} // namespace

EDID EDID::addingSplit(SplitLayout layout, Resolution ofNative) const {
    return tryAddingSplit(layout, ofNative).value();
}

RewriteResult EDID::tryAddingSplit(SplitLayout layout, Resolution ofNative) const {
    std::optional<EDID> promoted;
    if (!hasTiming(ofNative)) {
        RewriteResult result = tryPromotingToPreferred(
            Timing::cvtReducedBlanking(ofNative.width, ofNative.height, splitRefreshHz));
        if (!result) return result;
        promoted = std::move(result).value();
    }
    const EDID& withNative = promoted ? *promoted : *this;
    const Resolution split = layout.splitResolution(ofNative);
    if (withNative.hasTiming(split)) return promoted ? std::move(*promoted) : *this;
    const std::array<Resolution, 2> keeping{ofNative, split};
    return withNative.tryAdding(
        Timing::cvtReducedBlanking(split.width, split.height, splitRefreshHz), keeping);
}

EDID EDID::mergingSplitVersion(const EDID& other) const {
    const auto& timings = other.detailedTimings();
    if (timings.empty()) throw EDIDError::noPreferredTiming();
    return tryAdding(timings.front(), {}).value();
}

EDID EDID::adding(const Timing& timing, const std::vector<Resolution>& keeping) const {
    return tryAdding(timing, keeping).value();
}

RewriteResult EDID::tryAdding(const Timing& timing, std::span<const Resolution> keeping) const {
    const auto& existing = decoded_->detailedTimings;
    if (std::find(existing.begin(), existing.end(), timing) != existing.end()) return *this;
    if (auto error = refusal(timing, decoded_->rangeLimits)) return std::move(*error);
    const KeptSizes kept{nativeResolution(), preferredResolution(), timing.resolution(), keeping};
    auto placement = placementIn(bytes_, *decoded_, kept);
    if (auto* error = std::get_if<EDIDError>(&placement)) return std::move(*error);

    Bytes rewritten = bytes_;
    place(rewritten, std::get<Placement>(placement), timing.descriptorBytes(imageSize(timing)));
    return EDID(std::move(rewritten), Rewritten{});
}

EDID EDID::promotingToPreferred(const Timing& timing) const {
    return tryPromotingToPreferred(timing).value();
}

RewriteResult EDID::tryPromotingToPreferred(const Timing& timing) const {
    const auto& old = decoded_->preferredTiming;
    if (!old) return EDIDError::noPreferredTiming();
    if (auto error = refusal(timing, decoded_->rangeLimits)) return std::move(*error);
    // The previous preferred descriptor moves into a CTA-861 block of the EDID
    // whose preferred timing is now `timing`; only the base block differs, so
    // this EDID's CTA-861 and DisplayID blocks tell where it goes.
    const std::array<Resolution, 1> keeping{old->resolution()};
    const KeptSizes kept{nativeResolutionOf(timing.resolution(), decoded_->displayIDTimings),
                         timing.resolution(), timing.resolution(), keeping};
    auto placement = placementIn(bytes_, *decoded_, kept);
    if (auto* error = std::get_if<EDIDError>(&placement)) return std::move(*error);

    Descriptor oldBytes{};
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
    place(rewritten, std::get<Placement>(placement), oldBytes);
    return EDID(std::move(rewritten), Rewritten{});
}

ImageSize EDID::imageSize(const Timing& timing) const {
    const auto native = nativeResolution();
    if (!native) return {};
    return {scaled(at(horizontalSizeCM) * 10, timing.width, native->width, 4095),
            scaled(at(verticalSizeCM) * 10, timing.height, native->height, 4095)};
}

EDID EDID::fixingChecksums() const {
    Bytes fixed = bytes_;
    for (std::size_t block = 0; block < blockCount(); ++block)
        fixBlockChecksum(fixed, block * blockSize);
    return EDID(std::move(fixed), Rewritten{});
}

} // namespace EDIDKit
