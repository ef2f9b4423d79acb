#include "DecodedEDID.hpp"

#include <algorithm>
#include <span>

namespace EDIDKit {

namespace {

using Layout::blockSize;
using Layout::descriptorSize;

long long area(Resolution r) {
    return static_cast<long long>(r.width) * r.height;
}

std::optional<Timing> timingAt(const Bytes& bytes, std::size_t offset) {
    return Timing::fromDescriptor(std::span(bytes).subspan(offset, descriptorSize));
}

std::optional<RangeLimits> rangeLimitsOf(const Bytes& bytes) {
    for (std::size_t slot : Layout::descriptorSlots) {
        if (!isDisplayDescriptor(bytes, slot, 0xFD)) continue;
        const std::uint8_t flags = bytes[slot + 4];
        const auto offset = [&](bool on) { return on ? 255 : 0; };
        const int minV = bytes[slot + 5] + offset((flags & 0x03) == 0x03);
        const int maxV = bytes[slot + 6] + offset((flags & 0x02) != 0);
        const int minH = bytes[slot + 7] + offset((flags & 0x0C) == 0x0C);
        const int maxH = bytes[slot + 8] + offset((flags & 0x08) != 0);
        const int maxClock = bytes[slot + 9];
        if (maxV < minV || maxH < minH || maxClock == 0) return std::nullopt;
        return RangeLimits{{minV, maxV}, {minH, maxH}, maxClock * 1000};
    }
    return std::nullopt;
}

std::vector<DisplayIDTiming> displayIDTimingsOf(const Bytes& bytes) {
    constexpr std::uint8_t typeITag = 0x03;
    constexpr std::uint8_t typeVIITag = 0x22;
    constexpr std::size_t timingSize = 20;
    std::vector<DisplayIDTiming> timings;
    for (std::size_t b = blockSize; b < bytes.size(); b += blockSize) {
        if (bytes[b] != Layout::displayIDTag) continue;
        const std::size_t end = std::min(b + blockSize - 1, b + 5 + bytes[b + 2]);
        for (std::size_t p = b + 5; p + 3 <= end;) {
            const std::uint8_t tag = bytes[p];
            const std::size_t length = bytes[p + 2];
            const std::size_t payload = p + 3;
            if (tag == typeITag || tag == typeVIITag) {
                const std::size_t limit = std::min(end, payload + length);
                for (std::size_t q = payload; q + timingSize <= limit; q += timingSize) {
                    const auto t = Timing::fromDisplayID(std::span(bytes).subspan(q, timingSize),
                                                         tag == typeVIITag);
                    if (t) timings.push_back({*t, (bytes[q + 3] & 0x80) != 0});
                }
            } else if (tag == 0 && length == 0) {
                break; // padding: the rest of the section is empty
            }
            p = payload + length;
        }
    }
    return timings;
}

} // namespace

std::optional<Resolution> nativeResolutionOf(const std::optional<Resolution>& preferred,
                                             const std::vector<DisplayIDTiming>& fromDisplayID) {
    if (fromDisplayID.empty()) return preferred;
    auto candidate = std::find_if(fromDisplayID.begin(), fromDisplayID.end(),
                                  [](const DisplayIDTiming& t) { return t.preferred; });
    if (candidate == fromDisplayID.end())
        candidate =
            std::max_element(fromDisplayID.begin(), fromDisplayID.end(),
                             [](const DisplayIDTiming& a, const DisplayIDTiming& b) {
                                 return area(a.timing.resolution()) < area(b.timing.resolution());
                             });
    const Resolution d = candidate->timing.resolution();
    if (!preferred || area(d) > area(*preferred)) return d;
    return preferred;
}

DecodedEDID DecodedEDID::of(const Bytes& bytes) {
    DecodedEDID decoded;
    for (std::size_t start = blockSize; start < bytes.size(); start += blockSize)
        if (bytes[start] == Layout::ctaTag) decoded.ctaBlockStarts.push_back(start);

    // Four base slots, and at most six slots in each CTA-861 block.
    decoded.detailedTimings.reserve(Layout::descriptorSlots.size() +
                                    6 * decoded.ctaBlockStarts.size());
    for (std::size_t slot : Layout::descriptorSlots)
        if (auto t = timingAt(bytes, slot)) decoded.detailedTimings.push_back(*t);
    for (std::size_t block : decoded.ctaBlockStarts) {
        const auto free = visitCTADescriptorSlots(bytes, block, [&](std::size_t offset) {
            if (auto t = timingAt(bytes, offset)) decoded.detailedTimings.push_back(*t);
        });
        if (free && !decoded.firstFreeCTASlot) decoded.firstFreeCTASlot = free;
    }
    decoded.preferredTiming = timingAt(bytes, Layout::preferredTimingSlot);
    decoded.displayIDTimings = displayIDTimingsOf(bytes);
    decoded.rangeLimits = rangeLimitsOf(bytes);

    std::optional<Resolution> preferred;
    if (decoded.preferredTiming) preferred = decoded.preferredTiming->resolution();
    decoded.nativeResolution = nativeResolutionOf(preferred, decoded.displayIDTimings);
    decoded.monitorPreferredResolution = preferred;
    for (const DisplayIDTiming& t : decoded.displayIDTimings) {
        if (!t.preferred) continue;
        decoded.monitorPreferredResolution = t.timing.resolution();
        break;
    }
    return decoded;
}

} // namespace EDIDKit
