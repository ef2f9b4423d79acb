// Parsing without throwing, the fields the named edits change, and the edits
// themselves: each returns a new EDID and leaves its input as it was.

#include "DescriptorText.hpp"
#include "EDIDLayout.hpp"

#include <EDIDKit/EDID.hpp>
#include <algorithm>
#include <stdexcept>

namespace EDIDKit {

static_assert(EDID::blockSize == Layout::blockSize &&
              EDID::descriptorSize == Layout::descriptorSize);

namespace {

using Layout::blockSize;
using Layout::descriptorSize;

bool isDisplayDescriptor(const Bytes& b, std::size_t slot, std::uint8_t tag) {
    return b[slot] == 0 && b[slot + 1] == 0 && b[slot + 2] == 0 &&
           b[slot + Layout::displayDescriptorTagOffset] == tag;
}

std::size_t blockStart(const EDID& edid, std::size_t block) {
    if (block >= edid.blockCount())
        throw std::out_of_range("the EDID has " + std::to_string(edid.blockCount()) +
                                " blocks, no block " + std::to_string(block));
    return block * blockSize;
}

/// `bytes` with the base block's checksum made right again.
EDID withBaseChecksumFixed(Bytes bytes) {
    fixBlockChecksum(bytes, 0);
    return EDID(std::move(bytes));
}

} // namespace

std::optional<EDID> EDID::tryParse(Bytes data) {
    try {
        return EDID(std::move(data));
    } catch (const EDIDError&) {
        return std::nullopt;
    }
}

std::uint8_t EDID::manufactureWeek() const {
    return at(Layout::manufactureWeekOffset);
}

int EDID::screenWidthCM() const {
    return at(Layout::horizontalSizeCM);
}

int EDID::screenHeightCM() const {
    return at(Layout::verticalSizeCM);
}

std::size_t EDID::extensionCount() const {
    return at(Layout::extensionCountOffset);
}

std::uint8_t EDID::storedChecksum(std::size_t block) const {
    return at(blockStart(*this, block) + Layout::checksumOffset);
}

std::vector<std::size_t> EDID::descriptorSlotOffsets() const {
    std::vector<std::size_t> offsets(Layout::descriptorSlots.begin(),
                                     Layout::descriptorSlots.end());
    for (std::size_t block : ctaBlockStarts()) {
        const std::size_t d = at(block + Layout::CTA::detailedTimingsStartOffset);
        if (d < Layout::CTA::dataBlocksStart) continue;
        for (std::size_t o = block + d; o + descriptorSize <= block + Layout::checksumOffset;
             o += descriptorSize)
            offsets.push_back(o);
    }
    return offsets;
}

EDID EDID::withSerial(std::uint32_t serial) const {
    Bytes b = bytes_;
    for (std::size_t i = 0; i < Layout::serialNumberSize; ++i)
        b[Layout::serialNumberOffset + i] = static_cast<std::uint8_t>(serial >> (8 * i));
    return withBaseChecksumFixed(std::move(b));
}

EDID EDID::withIdentityOf(const EDID& other) const {
    Bytes b = bytes_;
    std::copy(other.bytes_.begin() + Layout::identityStart,
              other.bytes_.begin() + Layout::identityEnd, b.begin() + Layout::identityStart);
    return withBaseChecksumFixed(std::move(b));
}

EDID EDID::withManufactureWeek(std::uint8_t week) const {
    Bytes b = bytes_;
    b[Layout::manufactureWeekOffset] = week;
    return withBaseChecksumFixed(std::move(b));
}

EDID EDID::withScreenSizeCM(std::uint8_t horizontal, std::uint8_t vertical) const {
    Bytes b = bytes_;
    b[Layout::horizontalSizeCM] = horizontal;
    b[Layout::verticalSizeCM] = vertical;
    return withBaseChecksumFixed(std::move(b));
}

EDID EDID::withoutProductName() const {
    Bytes b = bytes_;
    for (std::size_t slot : Layout::descriptorSlots)
        if (isDisplayDescriptor(b, slot, Layout::productNameTag))
            b[slot + Layout::displayDescriptorTagOffset] = Layout::dummyDescriptorTag;
    return withBaseChecksumFixed(std::move(b));
}

EDID EDID::withProductName(std::string_view name) const {
    Bytes b = bytes_;
    for (std::size_t slot : Layout::descriptorSlots) {
        if (!isDisplayDescriptor(b, slot, Layout::productNameTag)) continue;
        const auto text = descriptorText(name);
        std::copy(text.begin(), text.end(),
                  b.begin() +
                      static_cast<std::ptrdiff_t>(slot + Layout::displayDescriptorDataOffset));
        return withBaseChecksumFixed(std::move(b));
    }
    return *this;
}

EDID EDID::withExtensionCount(std::uint8_t count) const {
    Bytes b = bytes_;
    b[Layout::extensionCountOffset] = count;
    return withBaseChecksumFixed(std::move(b));
}

EDID EDID::withoutExtensions() const {
    Bytes b(bytes_.begin(), bytes_.begin() + blockSize);
    b[Layout::extensionCountOffset] = 0;
    return withBaseChecksumFixed(std::move(b));
}

EDID EDID::withBrokenChecksum(std::size_t block) const {
    const std::size_t start = blockStart(*this, block);
    Bytes b = bytes_;
    b[start + Layout::checksumOffset] = static_cast<std::uint8_t>(blockChecksum(b, start) + 1);
    return EDID(std::move(b));
}

} // namespace EDIDKit
