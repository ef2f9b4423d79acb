#pragma once

// Where things sit in an EDID's bytes: the offsets and sizes the model reads
// and writes, named once for the files of EDIDKit.

#include <array>
#include <cstddef>
#include <cstdint>

namespace EDIDKit::Layout {

/// Every EDID block, the base block and each extension.
inline constexpr std::size_t blockSize = 128;
/// The last byte of a block makes the block sum to 0 modulo 256.
inline constexpr std::size_t checksumOffset = blockSize - 1;
/// Base block: how many extension blocks follow.
inline constexpr std::size_t extensionCountOffset = 126;
/// The base block and at most 255 extensions: the count is one byte.
inline constexpr std::size_t maxBlockCount = 256;

/// Base block: manufacturer ID, product code and serial number, bytes 8 to 15.
inline constexpr std::size_t identityStart = 8;
inline constexpr std::size_t identityEnd = 16;
/// Base block: the EDID version and revision.
inline constexpr std::size_t versionOffset = 18;
/// Base block: the screen size in centimetres.
inline constexpr std::size_t horizontalSizeCM = 21;
inline constexpr std::size_t verticalSizeCM = 22;
/// Base block: the standard timings end where the descriptors begin.
inline constexpr std::size_t standardTimingsStart = 38;

/// An 18-byte descriptor: a detailed timing, or a display descriptor.
inline constexpr std::size_t descriptorSize = 18;
/// The base block's four descriptor slots; the first holds the preferred timing.
inline constexpr std::array<std::size_t, 4> descriptorSlots{54, 72, 90, 108};
inline constexpr std::size_t preferredTimingSlot = descriptorSlots[0];
/// A display descriptor's tag byte, and where its text or data begins.
inline constexpr std::size_t displayDescriptorTagOffset = 3;
inline constexpr std::size_t displayDescriptorDataOffset = 5;
inline constexpr std::uint8_t serialTextTag = 0xFF;

/// The first byte of an extension block says what it is.
inline constexpr std::uint8_t ctaTag = 0x02;
inline constexpr std::uint8_t displayIDTag = 0x70;

} // namespace EDIDKit::Layout
