#include <EDIDKit/EDIDBuilder.hpp>

#include "EDIDLayout.hpp"

#include <algorithm>
#include <stdexcept>

namespace EDIDKit {

namespace {

using Layout::blockSize;
using Layout::descriptorSize;

std::uint8_t byte(int value) { return static_cast<std::uint8_t>(value & 0xFF); }

std::array<std::uint8_t, 18> displayDescriptor(std::uint8_t tag) {
    std::array<std::uint8_t, 18> d{};
    d[Layout::displayDescriptorTagOffset] = tag;
    return d;
}

} // namespace

EDIDBuilder::EDIDBuilder() : base_(blockSize, 0) {
    const std::array<std::uint8_t, 8> header{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    std::copy(header.begin(), header.end(), base_.begin());
    manufacturer("HLV");
    productID(0x3440);
    serialNumber(1);
    base_[16] = 12; // week of manufacture
    base_[17] = 34; // 2024
    base_[18] = 1;  // EDID 1.4
    base_[19] = 4;
    base_[20] = 0xA5; // digital, 8 bits per colour, DisplayPort
    screenSizeCM(80, 34);
    base_[23] = 120; // gamma 2.2
    base_[24] = 0x2E; // active-off DPMS, RGB 4:4:4 + YCbCr 4:4:4, sRGB, preferred timing is native
    // sRGB chromaticity.
    const std::array<std::uint8_t, 10> srgb{0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54};
    std::copy(srgb.begin(), srgb.end(), base_.begin() + 25);
    base_[35] = 0x20; // established timing 640×480 at 60 Hz, which every display must offer
    // No standard timings.
    for (std::size_t i = Layout::standardTimingsStart; i < Layout::descriptorSlots[0]; ++i) base_[i] = 0x01;
}

EDIDBuilder& EDIDBuilder::manufacturer(std::string_view letters) {
    if (letters.size() != 3 || !std::all_of(letters.begin(), letters.end(),
                                            [](char c) { return c >= 'A' && c <= 'Z'; }))
        throw std::invalid_argument("a manufacturer ID is three upper-case letters");
    const int packed = (letters[0] - '@') << 10 | (letters[1] - '@') << 5 | (letters[2] - '@');
    base_[8] = byte(packed >> 8);
    base_[9] = byte(packed);
    return *this;
}

EDIDBuilder& EDIDBuilder::productID(std::uint16_t id) {
    base_[10] = byte(id);
    base_[11] = byte(id >> 8);
    return *this;
}

EDIDBuilder& EDIDBuilder::serialNumber(std::uint32_t serial) {
    for (int i = 0; i < 4; ++i) base_[12 + static_cast<std::size_t>(i)] = byte(static_cast<int>(serial >> (8 * i)));
    return *this;
}

EDIDBuilder& EDIDBuilder::screenSizeCM(int horizontal, int vertical) {
    base_[21] = byte(horizontal);
    base_[22] = byte(vertical);
    return *this;
}

std::array<std::uint8_t, 18> EDIDBuilder::timingDescriptor(const Timing& timing) const {
    // Like most monitors, every timing is shown on the whole screen.
    return timing.descriptorBytes({base_[21] * 10, base_[22] * 10});
}

EDIDBuilder& EDIDBuilder::baseTiming(const Timing& timing) {
    return rawDescriptor(timingDescriptor(timing));
}

EDIDBuilder& EDIDBuilder::productName(std::string_view name) {
    auto d = displayDescriptor(0xFC);
    const std::size_t length = std::min<std::size_t>(name.size(), 13);
    std::copy_n(name.begin(), length, d.begin() + 5);
    if (length < 13) {
        d[5 + length] = 0x0A;
        std::fill(d.begin() + 6 + static_cast<std::ptrdiff_t>(length), d.end(), std::uint8_t{0x20});
    }
    return rawDescriptor(d);
}

EDIDBuilder& EDIDBuilder::rangeLimits(const Limits& limits) {
    auto d = displayDescriptor(0xFD);
    d[4] = limits.offsetFlags;
    d[5] = byte(limits.minVHz);
    d[6] = byte(limits.maxVHz);
    d[7] = byte(limits.minHKHz);
    d[8] = byte(limits.maxHKHz);
    d[9] = byte(limits.maxClock10MHz);
    d[10] = 0x01; // range limits only, no secondary timing formula
    d[11] = 0x0A;
    std::fill(d.begin() + 12, d.end(), std::uint8_t{0x20});
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
    block[0] = Layout::ctaTag;
    block[1] = 0x03;
    const std::size_t start = 4 + dataBlocks.size();
    if (start + descriptorSize * timings.size() > Layout::checksumOffset)
        throw std::length_error("the CTA-861 block cannot hold that many descriptors");
    block[2] = byte(static_cast<int>(start));
    // Underscanned IT formats, YCbCr 4:4:4 as the base block says, and the
    // number of native detailed timings.
    block[3] = byte(0xA0 | (timings.empty() ? 0 : 1));
    std::copy(dataBlocks.begin(), dataBlocks.end(), block.begin() + 4);
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
    const std::size_t payload = 20 * timings.size();
    if (5 + 15 + 3 + payload + 1 > blockSize - 1)
        throw std::length_error("the DisplayID section cannot hold that many timings");
    Bytes block(blockSize, 0);
    block[0] = Layout::displayIDTag;
    block[1] = typeVII ? 0x20 : 0x13;
    block[2] = byte(static_cast<int>(15 + 3 + payload)); // bytes of data blocks in the section
    block[3] = 0x00; // product type: an extension section
    block[4] = 0;
    std::size_t p = 5;
    // Product identification: the manufacturer's OUI, product code, serial,
    // week and year of manufacture, no name.
    const Bytes identification{static_cast<std::uint8_t>(typeVII ? 0x20 : 0x00), 0, 12, 0x00, 0x1B, 0xC8,
                               base_[10], base_[11], base_[12], base_[13], base_[14], base_[15],
                               base_[16], 24, 0};
    std::copy(identification.begin(), identification.end(), block.begin() + 5);
    p += identification.size();
    block[p] = typeVII ? 0x22 : 0x03;
    block[p + 1] = 0;
    block[p + 2] = byte(static_cast<int>(payload));
    p += 3;
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
        block[p + 3] = entry.preferred ? 0x80 : 0x00;
        put16(p + 4, t.width);
        put16(p + 6, t.hBlank);
        put16(p + 8, t.hFrontPorch);
        block[p + 9] = byte(block[p + 9] | 0x80); // positive horizontal sync
        put16(p + 10, t.hSync);
        put16(p + 12, t.height);
        put16(p + 14, t.vBlank);
        put16(p + 16, t.vFrontPorch);
        put16(p + 18, t.vSync);
        p += 20;
    }
    // Section checksum: bytes 1 through the checksum itself sum to 0.
    unsigned sum = 0;
    for (std::size_t i = 1; i < p; ++i) sum += block[i];
    block[p] = byte(static_cast<int>((256 - sum % 256) % 256));
    extensions_.push_back(std::move(block));
    return *this;
}

Bytes EDIDBuilder::build() const {
    Bytes out = base_;
    for (std::size_t slot = 0; slot < Layout::descriptorSlots.size(); ++slot) {
        const auto d = slot < descriptors_.size() ? descriptors_[slot] : displayDescriptor(0x10);
        std::copy(d.begin(), d.end(), out.begin() + static_cast<std::ptrdiff_t>(Layout::descriptorSlots[slot]));
    }
    out[Layout::extensionCountOffset] = byte(static_cast<int>(extensions_.size()));
    for (const Bytes& extension : extensions_) out.insert(out.end(), extension.begin(), extension.end());
    for (std::size_t start = 0; start < out.size(); start += blockSize) fixBlockChecksum(out, start);
    return out;
}

} // namespace EDIDKit
