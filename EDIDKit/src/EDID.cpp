#include "DecodedEDID.hpp"
#include "EDIDLayout.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/RepairedUTF8.hpp>
#include <algorithm>
#include <array>

namespace EDIDKit {

namespace {

using Layout::blockSize;
using Layout::descriptorSize;
constexpr auto baseSlots = Layout::descriptorSlots;

} // namespace

EDID::EDID(Bytes data, Rewritten)
    : bytes_(std::move(data)),
      decoded_(std::make_shared<const DecodedEDID>(DecodedEDID::of(bytes_))) {}

EDID::EDID(Bytes data) : bytes_(std::move(data)) {
    if (bytes_.size() < blockSize || bytes_.size() % blockSize != 0 ||
        bytes_.size() > blockSize * Layout::maxBlockCount)
        throw EDIDError::invalidLength(
            static_cast<int>(std::min<std::size_t>(bytes_.size(), INT32_MAX)));
    static constexpr std::array<std::uint8_t, 8> header{0x00, 0xFF, 0xFF, 0xFF,
                                                        0xFF, 0xFF, 0xFF, 0x00};
    if (!std::equal(header.begin(), header.end(), bytes_.begin())) throw EDIDError::invalidHeader();
    decoded_ = std::make_shared<const DecodedEDID>(DecodedEDID::of(bytes_));
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
    if (const auto& t = decoded_->preferredTiming) return t->resolution();
    return std::nullopt;
}

std::optional<Resolution> EDID::monitorPreferredResolution() const {
    return decoded_->monitorPreferredResolution;
}

std::optional<RangeLimits> EDID::rangeLimits() const {
    return decoded_->rangeLimits;
}

const std::vector<std::size_t>& EDID::ctaBlockStarts() const& {
    return decoded_->ctaBlockStarts;
}

std::vector<std::size_t> EDID::ctaBlockStarts() const&& {
    return decoded_->ctaBlockStarts;
}

CTADescriptorSlots EDID::ctaDescriptorOffsets(std::size_t blockStart) const {
    CTADescriptorSlots slots;
    slots.free = visitCTADescriptorSlots(
        bytes_, blockStart, [&](std::size_t offset) { slots.occupied.push_back(offset); });
    return slots;
}

const std::vector<Timing>& EDID::detailedTimings() const& {
    return decoded_->detailedTimings;
}

std::vector<Timing> EDID::detailedTimings() const&& {
    return decoded_->detailedTimings;
}

const std::vector<DisplayIDTiming>& EDID::displayIDTimings() const& {
    return decoded_->displayIDTimings;
}

std::vector<DisplayIDTiming> EDID::displayIDTimings() const&& {
    return decoded_->displayIDTimings;
}

std::optional<Resolution> EDID::nativeResolution() const {
    return decoded_->nativeResolution;
}

bool EDID::hasTiming(Resolution r) const {
    const auto matches = [&](const Timing& t) {
        return t.width == r.width && t.height == r.height;
    };
    const auto& dtds = decoded_->detailedTimings;
    if (std::any_of(dtds.begin(), dtds.end(), matches)) return true;
    const auto& fromDisplayID = decoded_->displayIDTimings;
    return std::any_of(fromDisplayID.begin(), fromDisplayID.end(),
                       [&](const DisplayIDTiming& t) { return matches(t.timing); });
}

std::optional<ImageSize> EDID::imageSizeMM(Resolution r) const {
    const auto sizeAt = [&](std::size_t o) -> std::optional<ImageSize> {
        const auto t = timingAt(o);
        if (!t || t->width != r.width || t->height != r.height) return std::nullopt;
        return ImageSize{at(o + 12) + 256 * (at(o + 14) >> 4),
                         at(o + 13) + 256 * (at(o + 14) & 0x0F)};
    };
    for (std::size_t slot : baseSlots)
        if (const auto size = sizeAt(slot)) return size;
    std::optional<ImageSize> found;
    for (std::size_t block : decoded_->ctaBlockStarts) {
        visitCTADescriptorSlots(bytes_, block, [&](std::size_t offset) {
            if (!found) found = sizeAt(offset);
        });
        if (found) return found;
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
