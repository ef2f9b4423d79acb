#include <EDIDKit/EDIDBuilder.hpp>

#include "DescriptorText.hpp"
#include "EDIDLayout.hpp"

#include <algorithm>
#include <stdexcept>

namespace EDIDKit {

namespace {

using Layout::blockSize;
using Layout::descriptorSize;
namespace Range = Layout::RangeLimitsField;
namespace CTA = Layout::CTA;
namespace DisplayID = Layout::DisplayID;

std::uint8_t byte(int value) { return static_cast<std::uint8_t>(value & 0xFF); }

std::array<std::uint8_t, 18> displayDescriptor(std::uint8_t tag) {
    std::array<std::uint8_t, 18> d{};
    d[Layout::displayDescriptorTagOffset] = tag;
    return d;
}

} // namespace

EDIDBuilder::EDIDBuilder() : base_(blockSize, 0) {
    std::copy(Layout::header.begin(), Layout::header.end(), base_.begin());
    manufacturer("HLV");
    productID(0x3440);
    serialNumber(1);
    base_[Layout::manufactureWeekOffset] = 12;
    base_[Layout::manufactureYearOffset] = 34; // 2024
    base_[Layout::versionOffset] = 1;          // EDID 1.4
    base_[Layout::revisionOffset] = 4;
    base_[Layout::videoInputOffset] = 0xA5; // digital, 8 bits per colour, DisplayPort
    screenSizeCM(80, 34);
    base_[Layout::gammaOffset] = 120; // gamma 2.2
    // Active-off DPMS, RGB 4:4:4 + YCbCr 4:4:4, sRGB, preferred timing is native.
    base_[Layout::featureSupportOffset] = 0x2E;
    // sRGB chromaticity.
    const std::array<std::uint8_t, 10> srgb{0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54};
    std::copy(srgb.begin(), srgb.end(), base_.begin() + Layout::chromaticityStart);
    // Established timing 640×480 at 60 Hz, which every display must offer.
    base_[Layout::establishedTimingsStart] = 0x20;
    // No standard timings.
    for (std::size_t i = Layout::standardTimingsStart; i < Layout::descriptorSlots[0]; ++i) base_[i] = 0x01;
}

EDIDBuilder& EDIDBuilder::manufacturer(std::string_view letters) {
    if (letters.size() != 3 || !std::all_of(letters.begin(), letters.end(),
                                            [](char c) { return c >= 'A' && c <= 'Z'; }))
        throw std::invalid_argument("a manufacturer ID is three upper-case letters");
    const int packed = (letters[0] - '@') << 10 | (letters[1] - '@') << 5 | (letters[2] - '@');
    base_[Layout::manufacturerIDOffset] = byte(packed >> 8);
    base_[Layout::manufacturerIDOffset + 1] = byte(packed);
    return *this;
}

EDIDBuilder& EDIDBuilder::productID(std::uint16_t id) {
    base_[Layout::productCodeOffset] = byte(id);
    base_[Layout::productCodeOffset + 1] = byte(id >> 8);
    return *this;
}

EDIDBuilder& EDIDBuilder::serialNumber(std::uint32_t serial) {
    for (std::size_t i = 0; i < Layout::serialNumberSize; ++i)
        base_[Layout::serialNumberOffset + i] = byte(static_cast<int>(serial >> (8 * i)));
    return *this;
}

EDIDBuilder& EDIDBuilder::screenSizeCM(int horizontal, int vertical) {
    base_[Layout::horizontalSizeCM] = byte(horizontal);
    base_[Layout::verticalSizeCM] = byte(vertical);
    return *this;
}

std::array<std::uint8_t, 18> EDIDBuilder::timingDescriptor(const Timing& timing) const {
    // Like most monitors, every timing is shown on the whole screen.
    return timing.descriptorBytes(
        {base_[Layout::horizontalSizeCM] * 10, base_[Layout::verticalSizeCM] * 10});
}

EDIDBuilder& EDIDBuilder::baseTiming(const Timing& timing) {
    return rawDescriptor(timingDescriptor(timing));
}

EDIDBuilder& EDIDBuilder::productName(std::string_view name) {
    auto d = displayDescriptor(Layout::productNameTag);
    const auto text = descriptorText(name);
    std::copy(text.begin(), text.end(), d.begin() + Layout::displayDescriptorDataOffset);
    return rawDescriptor(d);
}

EDIDBuilder& EDIDBuilder::rangeLimits(const Limits& limits) {
    auto d = displayDescriptor(Layout::rangeLimitsTag);
    d[Range::offsetFlags] = limits.offsetFlags;
    d[Range::minVerticalHz] = byte(limits.minVHz);
    d[Range::maxVerticalHz] = byte(limits.maxVHz);
    d[Range::minHorizontalKHz] = byte(limits.minHKHz);
    d[Range::maxHorizontalKHz] = byte(limits.maxHKHz);
    d[Range::maxPixelClock] = byte(limits.maxClock10MHz);
    d[Range::timingSupport] = 0x01; // range limits only, no secondary timing formula
    d[Range::rangeLimitsOnlyEnd] = Layout::textEnd;
    std::fill(d.begin() + Range::rangeLimitsOnlyEnd + 1, d.end(), Layout::textPadding);
    return rawDescriptor(d);
}

EDIDBuilder& EDIDBuilder::rawDescriptor(const std::array<std::uint8_t, 18>& descriptor) {
    if (descriptors_.size() == Layout::descriptorSlots.size())
        throw std::length_error("the base block holds four descriptors");
    descriptors_.push_back(descriptor);
    return *this;
}

EDIDBuilder& EDIDBuilder::ctaExtension(const std::vector<Timing>& timings, const Bytes& dataBlocks) {
    Bytes block(blockSize, 0);
    block[Layout::extensionTagOffset] = Layout::ctaTag;
    block[CTA::revisionOffset] = CTA::version3;
    const std::size_t start = CTA::dataBlocksStart + dataBlocks.size();
    if (start + descriptorSize * timings.size() > Layout::checksumOffset)
        throw std::length_error("the CTA-861 block cannot hold that many descriptors");
    block[CTA::detailedTimingsStartOffset] = byte(static_cast<int>(start));
    // Underscanned IT formats, YCbCr 4:4:4 as the base block says, and the
    // number of native detailed timings.
    block[CTA::flagsOffset] = byte(0xA0 | (timings.empty() ? 0 : 1));
    std::copy(dataBlocks.begin(), dataBlocks.end(), block.begin() + CTA::dataBlocksStart);
    std::size_t offset = start;
    for (const Timing& t : timings) {
        const auto d = timingDescriptor(t);
        std::copy(d.begin(), d.end(), block.begin() + static_cast<std::ptrdiff_t>(offset));
        offset += descriptorSize;
    }
    extensions_.push_back(std::move(block));
    return *this;
}

EDIDBuilder& EDIDBuilder::displayIDExtension(const std::vector<DisplayIDEntry>& timings,
                                             bool typeVII) {
    const std::size_t payload = DisplayID::timingSize * timings.size();
    // Product identification: the manufacturer's OUI, product code, serial,
    // week and year of manufacture, no name.
    const std::uint8_t identificationTag =
        typeVII ? DisplayID::productIdentificationTag20 : DisplayID::productIdentificationTag;
    Bytes identification{identificationTag, 0, 12, 0x00, 0x1B, 0xC8};
    const auto fromBase = [&](std::size_t start, std::size_t count) {
        const auto first = base_.begin() + static_cast<std::ptrdiff_t>(start);
        identification.insert(identification.end(), first,
                              first + static_cast<std::ptrdiff_t>(count));
    };
    fromBase(Layout::productCodeOffset, 2);
    fromBase(Layout::serialNumberOffset, Layout::serialNumberSize);
    fromBase(Layout::manufactureWeekOffset, 1);
    identification.push_back(24); // the year, as the base block's
    identification.push_back(0);  // no name
    const std::size_t sectionLength =
        identification.size() + DisplayID::dataBlockHeaderSize + payload;
    // The section checksum follows the data blocks, before the block's own.
    if (DisplayID::dataBlocksStart + sectionLength + 1 > Layout::checksumOffset)
        throw std::length_error("the DisplayID section cannot hold that many timings");
    Bytes block(blockSize, 0);
    block[Layout::extensionTagOffset] = Layout::displayIDTag;
    block[DisplayID::versionOffset] = typeVII ? DisplayID::version20 : DisplayID::version13;
    block[DisplayID::sectionLengthOffset] = byte(static_cast<int>(sectionLength));
    block[DisplayID::productTypeOffset] = DisplayID::extensionSection;
    block[DisplayID::extensionCountOffset] = 0;
    std::size_t p = DisplayID::dataBlocksStart;
    std::copy(identification.begin(), identification.end(),
              block.begin() + static_cast<std::ptrdiff_t>(p));
    p += identification.size();
    block[p] = typeVII ? DisplayID::typeVIITimingTag : DisplayID::typeITimingTag;
    block[p + DisplayID::dataBlockRevisionOffset] = 0;
    block[p + DisplayID::dataBlockLengthOffset] = byte(static_cast<int>(payload));
    p += DisplayID::dataBlockHeaderSize;
    for (const DisplayIDEntry& entry : timings) {
        const Timing& t = entry.timing;
        const int clock = (typeVII ? entry.clockKHz.value_or(t.pixelClock10kHz * 10) : t.pixelClock10kHz) - 1;
        const auto put16 = [&](std::size_t at, int value) {
            block[at] = byte(value - 1);
            block[at + 1] = byte((value - 1) >> 8);
        };
        block[p] = byte(clock);
        block[p + 1] = byte(clock >> 8);
        block[p + 2] = byte(clock >> 16);
        block[p + DisplayID::timingOptionsOffset] =
            entry.preferred ? DisplayID::preferredFlag : 0x00;
        put16(p + 4, t.width);
        put16(p + 6, t.hBlank);
        put16(p + 8, t.hFrontPorch);
        block[p + 9] = byte(block[p + 9] | 0x80); // positive horizontal sync
        put16(p + 10, t.hSync);
        put16(p + 12, t.height);
        put16(p + 14, t.vBlank);
        put16(p + 16, t.vFrontPorch);
        put16(p + 18, t.vSync);
        p += DisplayID::timingSize;
    }
    // Section checksum: the section, from its version byte through the checksum itself, sums to 0.
    unsigned sum = 0;
    for (std::size_t i = DisplayID::versionOffset; i < p; ++i)
        sum += block[i];
    block[p] = byte(static_cast<int>((256 - sum % 256) % 256));
    extensions_.push_back(std::move(block));
    return *this;
}

Bytes EDIDBuilder::build() const {
    Bytes out = base_;
    for (std::size_t slot = 0; slot < Layout::descriptorSlots.size(); ++slot) {
        const auto d = slot < descriptors_.size() ? descriptors_[slot]
                                                  : displayDescriptor(Layout::dummyDescriptorTag);
        std::copy(d.begin(), d.end(), out.begin() + static_cast<std::ptrdiff_t>(Layout::descriptorSlots[slot]));
    }
    out[Layout::extensionCountOffset] = byte(static_cast<int>(extensions_.size()));
    for (const Bytes& extension : extensions_) out.insert(out.end(), extension.begin(), extension.end());
    for (std::size_t start = 0; start < out.size(); start += blockSize) fixBlockChecksum(out, start);
    return out;
}

} // namespace EDIDKit
