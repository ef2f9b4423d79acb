#pragma once

// What an EDID's bytes say, read in one pass when the EDID is made: the
// accessors, the native guess and the rewrites all answer from it.

#include "EDIDLayout.hpp"

#include <EDIDKit/EDID.hpp>
#include <cstddef>
#include <optional>
#include <vector>

namespace EDIDKit {

struct DecodedEDID {
    /// The base block's first descriptor, when it holds a timing.
    std::optional<Timing> preferredTiming;
    /// The base block's four slots, then every CTA-861 block's occupied slots.
    std::vector<Timing> detailedTimings;
    std::vector<DisplayIDTiming> displayIDTimings;
    std::optional<RangeLimits> rangeLimits;
    std::optional<Resolution> nativeResolution;
    std::optional<Resolution> monitorPreferredResolution;
    /// Offsets of the CTA-861 blocks, in block order.
    std::vector<std::size_t> ctaBlockStarts;
    /// The first free descriptor slot of the first CTA-861 block that has one.
    std::optional<std::size_t> firstFreeCTASlot;

    static DecodedEDID of(const Bytes& bytes);
};

/// The panel's resolution: the preferred one, unless a DisplayID section
/// offers a strictly larger preferred (or else largest) timing.
std::optional<Resolution> nativeResolutionOf(const std::optional<Resolution>& preferred,
                                             const std::vector<DisplayIDTiming>& fromDisplayID);

/// Whether the 18 bytes at `slot` are a display descriptor with this tag.
inline bool isDisplayDescriptor(const Bytes& b, std::size_t slot, std::uint8_t tag) {
    return b[slot] == 0 && b[slot + 1] == 0 && b[slot + 2] == 0 &&
           b[slot + Layout::displayDescriptorTagOffset] == tag;
}

/// Calls `visit(offset)` for each slot of the CTA-861 block at `blockStart`
/// that holds a timing, in order, up to the first free slot, and returns
/// that free slot, if any.
template <typename Visit>
std::optional<std::size_t> visitCTADescriptorSlots(const Bytes& bytes, std::size_t blockStart,
                                                   Visit&& visit) {
    const std::size_t d = bytes[blockStart + 2];
    if (d < 4) return std::nullopt;
    const std::size_t checksumOffset = blockStart + Layout::checksumOffset;
    for (std::size_t o = blockStart + d; o + Layout::descriptorSize <= checksumOffset;
         o += Layout::descriptorSize) {
        if (bytes[o] == 0 && bytes[o + 1] == 0) return o;
        visit(o);
    }
    return std::nullopt;
}

} // namespace EDIDKit
