#include "EDIDLayout.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/RepairedUTF8.hpp>
#include <algorithm>
#include <array>

namespace EDIDKit {

namespace {

using Layout::blockSize;
using Layout::ctaTag;
using Layout::descriptorSize;
using Layout::displayIDTag;
constexpr auto baseSlots = Layout::descriptorSlots;

bool isDisplayDescriptor(const Bytes& b, std::size_t slot, std::uint8_t tag) {
    return b[slot] == 0 && b[slot + 1] == 0 && b[slot + 2] == 0 &&
           b[slot + Layout::displayDescriptorTagOffset] == tag;
}

long long area(Resolution r) {
    return static_cast<long long>(r.width) * r.height;
}

} // namespace

EDID::EDID(Bytes data) : bytes_(std::move(data)) {
    if (bytes_.size() < blockSize || bytes_.size() % blockSize != 0 ||
        bytes_.size() > blockSize * Layout::maxBlockCount)
        throw EDIDError::invalidLength(
            static_cast<int>(std::min<std::size_t>(bytes_.size(), INT32_MAX)));
    static constexpr std::array<std::uint8_t, 8> header{0x00, 0xFF, 0xFF, 0xFF,
                                                        0xFF, 0xFF, 0xFF, 0x00};
    if (!std::equal(header.begin(), header.end(), bytes_.begin())) throw EDIDError::invalidHeader();
}

bool EDID::isChecksumValid() const {
    for (std::size_t start = 0; start + blockSize <= bytes_.size(); start += blockSize) {
        unsigned sum = 0;
        for (std::size_t i = start; i < start + blockSize; ++i)
            sum += bytes_[i];
        if (sum % 256 != 0) return false;
    }
    return true;
}

std::uint32_t EDID::vendorID() const {
    return std::uint32_t{at(8)} << 8 | at(9);
}

std::uint32_t EDID::productID() const {
    return at(10) | std::uint32_t{at(11)} << 8;
}

std::uint32_t EDID::serialNumber() const {
    return at(12) | std::uint32_t{at(13)} << 8 | std::uint32_t{at(14)} << 16 |
           std::uint32_t{at(15)} << 24;
}

std::optional<std::string> EDID::productName() const {
    for (std::size_t slot : baseSlots) {
        if (!isDisplayDescriptor(bytes_, slot, 0xFC)) continue;
        const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(slot + 5);
        const auto last = std::find(first, first + 13, std::uint8_t{0x0A});
        std::string text = repairedUTF8({&*first, static_cast<std::size_t>(last - first)});
        const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
        const auto begin = std::find_if_not(text.begin(), text.end(), isBlank);
        const auto end =
            std::find_if_not(text.rbegin(), std::make_reverse_iterator(begin), isBlank).base();
        return std::string(begin, end);
    }
    return std::nullopt;
}

std::optional<Timing> EDID::timingAt(std::size_t offset) const {
    return Timing::fromDescriptor(std::span(bytes_).subspan(offset, descriptorSize));
}

std::optional<Resolution> EDID::preferredResolution() const {
    if (const auto t = timingAt(Layout::preferredTimingSlot)) return t->resolution();
    return std::nullopt;
}

std::optional<Resolution> EDID::monitorPreferredResolution() const {
    for (const DisplayIDTiming& t : displayIDTimings())
        if (t.preferred) return t.timing.resolution();
    return preferredResolution();
}

std::optional<RangeLimits> EDID::rangeLimits() const {
    for (std::size_t slot : baseSlots) {
        if (!isDisplayDescriptor(bytes_, slot, 0xFD)) continue;
        const std::uint8_t flags = at(slot + 4);
        const auto offset = [&](bool on) { return on ? 255 : 0; };
        const int minV = at(slot + 5) + offset((flags & 0x03) == 0x03);
        const int maxV = at(slot + 6) + offset((flags & 0x02) != 0);
        const int minH = at(slot + 7) + offset((flags & 0x0C) == 0x0C);
        const int maxH = at(slot + 8) + offset((flags & 0x08) != 0);
        const int maxClock = at(slot + 9);
        if (maxV < minV || maxH < minH || maxClock == 0) return std::nullopt;
        return RangeLimits{{minV, maxV}, {minH, maxH}, maxClock * 1000};
    }
    return std::nullopt;
}

std::vector<std::size_t> EDID::ctaBlockStarts() const {
    std::vector<std::size_t> starts;
    for (std::size_t start = blockSize; start < bytes_.size(); start += blockSize)
        if (at(start) == ctaTag) starts.push_back(start);
    return starts;
}

CTADescriptorSlots EDID::ctaDescriptorOffsets(std::size_t blockStart) const {
    CTADescriptorSlots slots;
    const std::size_t d = at(blockStart + 2);
    if (d < 4) return slots;
    const std::size_t checksumOffset = blockStart + blockSize - 1;
    for (std::size_t o = blockStart + d; o + descriptorSize <= checksumOffset;
         o += descriptorSize) {
        if (at(o) == 0 && at(o + 1) == 0) {
            slots.free = o;
            return slots;
        }
        slots.occupied.push_back(o);
    }
    return slots;
}

std::vector<std::size_t> EDID::timingCandidateOffsets() const {
    std::vector<std::size_t> offsets(baseSlots.begin(), baseSlots.end());
    for (std::size_t block : ctaBlockStarts()) {
        const auto occupied = ctaDescriptorOffsets(block).occupied;
        offsets.insert(offsets.end(), occupied.begin(), occupied.end());
    }
    return offsets;
}

std::vector<Timing> EDID::detailedTimings() const {
    std::vector<Timing> timings;
    for (std::size_t offset : timingCandidateOffsets())
        if (auto t = timingAt(offset)) timings.push_back(*t);
    return timings;
}

std::vector<DisplayIDTiming> EDID::displayIDTimings() const {
    constexpr std::uint8_t typeITag = 0x03;
    constexpr std::uint8_t typeVIITag = 0x22;
    constexpr std::size_t timingSize = 20;
    std::vector<DisplayIDTiming> timings;
    for (std::size_t b = blockSize; b < bytes_.size(); b += blockSize) {
        if (at(b) != displayIDTag) continue;
        const std::size_t end = std::min(b + blockSize - 1, b + 5 + at(b + 2));
        for (std::size_t p = b + 5; p + 3 <= end;) {
            const std::uint8_t tag = at(p);
            const std::size_t length = at(p + 2);
            const std::size_t payload = p + 3;
            if (tag == typeITag || tag == typeVIITag) {
                const std::size_t limit = std::min(end, payload + length);
                for (std::size_t q = payload; q + timingSize <= limit; q += timingSize) {
                    const auto t = Timing::fromDisplayID(std::span(bytes_).subspan(q, timingSize),
                                                         tag == typeVIITag);
                    if (t) timings.push_back({*t, (at(q + 3) & 0x80) != 0});
                }
            } else if (tag == 0 && length == 0) {
                break; // padding: the rest of the section is empty
            }
            p = payload + length;
        }
    }
    return timings;
}

std::optional<Resolution> EDID::nativeResolution() const {
    const auto preferred = preferredResolution();
    const auto fromDisplayID = displayIDTimings();
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

bool EDID::hasTiming(Resolution r) const {
    const auto matches = [&](const Timing& t) {
        return t.width == r.width && t.height == r.height;
    };
    const auto dtds = detailedTimings();
    if (std::any_of(dtds.begin(), dtds.end(), matches)) return true;
    const auto fromDisplayID = displayIDTimings();
    return std::any_of(fromDisplayID.begin(), fromDisplayID.end(),
                       [&](const DisplayIDTiming& t) { return matches(t.timing); });
}

std::optional<ImageSize> EDID::imageSizeMM(Resolution r) const {
    for (std::size_t o : timingCandidateOffsets()) {
        const auto t = timingAt(o);
        if (!t || t->width != r.width || t->height != r.height) continue;
        return ImageSize{at(o + 12) + 256 * (at(o + 14) >> 4),
                         at(o + 13) + 256 * (at(o + 14) & 0x0F)};
    }
    return std::nullopt;
}

std::uint8_t blockChecksum(const Bytes& bytes, std::size_t blockStart) {
    unsigned sum = 0;
    for (std::size_t i = blockStart; i < blockStart + blockSize - 1; ++i)
        sum += bytes[i];
    return static_cast<std::uint8_t>((256 - sum % 256) % 256);
}

void fixBlockChecksum(Bytes& bytes, std::size_t blockStart) {
    bytes[blockStart + blockSize - 1] = blockChecksum(bytes, blockStart);
}

} // namespace EDIDKit
