#pragma once

// Where things sit in an EDID's bytes: the offsets, sizes and tags the model
// reads and writes, named once for the files of EDIDKit, each beside the part
// of its standard that defines it:
//   E-EDID     VESA Enhanced EDID Standard, Release A, Revision 2 (EDID 1.4)
//   CTA-861-H  the CTA-861 extension block
//   DisplayID  VESA DisplayID 1.3 and 2.0, carried in an EDID extension block

#include <array>
#include <cstddef>
#include <cstdint>

namespace EDIDKit::Layout {

// --- Blocks -----------------------------------------------------------------

/// Every EDID block, the base block and each extension. E-EDID 2.2.
inline constexpr std::size_t blockSize = 128;
/// The base block and at most 255 extensions: the count is one byte. E-EDID 2.2.1.
inline constexpr std::size_t maxBlockCount = 256;
/// The fixed header that opens the base block. E-EDID 3.1.
inline constexpr std::array<std::uint8_t, 8> header{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
/// Base block: how many extension blocks follow. E-EDID 3.11 (extension flag and checksum).
inline constexpr std::size_t extensionCountOffset = 126;
/// The last byte of a block makes the block sum to 0 modulo 256. E-EDID 3.11.
inline constexpr std::size_t checksumOffset = blockSize - 1;

// --- Base block: vendor and product identification, E-EDID 3.4 --------------

/// Manufacturer ID, product code and serial number, bytes 8 to 15.
inline constexpr std::size_t identityStart = 8;
inline constexpr std::size_t identityEnd = 16;
/// The manufacturer ID: three letters of five bits, big-endian. E-EDID 3.4.1.
inline constexpr std::size_t manufacturerIDOffset = 8;
/// The product code, little-endian. E-EDID 3.4.2.
inline constexpr std::size_t productCodeOffset = 10;
/// The serial number, 32 bits little-endian. E-EDID 3.4.3.
inline constexpr std::size_t serialNumberOffset = 12;
inline constexpr std::size_t serialNumberSize = 4;
/// Week and year of manufacture (the year counted from 1990). E-EDID 3.4.4.
inline constexpr std::size_t manufactureWeekOffset = 16;
inline constexpr std::size_t manufactureYearOffset = 17;

// --- Base block: structure version, basic parameters, E-EDID 3.5 to 3.9 -------

/// The EDID version and revision. E-EDID 3.5.
inline constexpr std::size_t versionOffset = 18;
inline constexpr std::size_t revisionOffset = 19;
/// Video input definition. E-EDID 3.6.1.
inline constexpr std::size_t videoInputOffset = 20;
/// The screen size in centimetres. E-EDID 3.6.2.
inline constexpr std::size_t horizontalSizeCM = 21;
inline constexpr std::size_t verticalSizeCM = 22;
/// Display transfer characteristic (gamma × 100 − 100). E-EDID 3.6.3.
inline constexpr std::size_t gammaOffset = 23;
/// Feature support: power management, colour encodings, preferred timing. E-EDID 3.6.4.
inline constexpr std::size_t featureSupportOffset = 24;
/// Display x, y chromaticity coordinates, ten bytes. E-EDID 3.7.
inline constexpr std::size_t chromaticityStart = 25;
/// Established timings I and II, three bytes. E-EDID 3.8.
inline constexpr std::size_t establishedTimingsStart = 35;
/// The eight standard timings end where the descriptors begin. E-EDID 3.9.
inline constexpr std::size_t standardTimingsStart = 38;

// --- 18-byte descriptors, E-EDID 3.10 -----------------------------------------

/// An 18-byte descriptor: a detailed timing (E-EDID 3.10.2), or a display
/// descriptor (E-EDID 3.10.3). Also the size of a CTA-861 detailed timing.
inline constexpr std::size_t descriptorSize = 18;
/// The base block's four descriptor slots; the first holds the preferred timing. E-EDID 3.10.
inline constexpr std::array<std::size_t, 4> descriptorSlots{54, 72, 90, 108};
inline constexpr std::size_t preferredTimingSlot = descriptorSlots[0];
/// A display descriptor's tag byte, and where its text or data begins: 13
/// bytes, text ended by a line feed and padded with spaces. E-EDID 3.10.3.
inline constexpr std::size_t displayDescriptorTagOffset = 3;
inline constexpr std::size_t displayDescriptorDataOffset = 5;
inline constexpr std::size_t displayDescriptorDataSize =
    descriptorSize - displayDescriptorDataOffset;
inline constexpr std::uint8_t textEnd = 0x0A;
inline constexpr std::uint8_t textPadding = 0x20;
/// Display product serial number (text). E-EDID 3.10.3.1.
inline constexpr std::uint8_t serialTextTag = 0xFF;
/// Display range limits. E-EDID 3.10.3.3.
inline constexpr std::uint8_t rangeLimitsTag = 0xFD;
/// Display product name. E-EDID 3.10.3.4.
inline constexpr std::uint8_t productNameTag = 0xFC;
/// Dummy descriptor: a slot that holds nothing. E-EDID 3.10.3 (dummy descriptor).
inline constexpr std::uint8_t dummyDescriptorTag = 0x10;

/// Display range limits fields, offsets within the descriptor. E-EDID 3.10.3.3.
namespace RangeLimitsField {
/// Which of the rates below carry a +255 offset.
inline constexpr std::size_t offsetFlags = 4;
inline constexpr std::size_t minVerticalHz = 5;
inline constexpr std::size_t maxVerticalHz = 6;
inline constexpr std::size_t minHorizontalKHz = 7;
inline constexpr std::size_t maxHorizontalKHz = 8;
/// The maximum pixel clock in units of 10 MHz.
inline constexpr std::size_t maxPixelClock = 9;
/// Video timing support: range limits only, GTF or CVT.
inline constexpr std::size_t timingSupport = 10;
/// What follows "range limits only": a line feed, then spaces.
inline constexpr std::size_t rangeLimitsOnlyEnd = 11;
} // namespace RangeLimitsField

// --- Extension blocks -----------------------------------------------------------

/// The first byte of an extension block says what it is: a CTA-861 extension
/// (E-EDID 2.2.4), or a DisplayID section (DisplayID 1.3 appendix B, DisplayID
/// as an EDID extension).
inline constexpr std::size_t extensionTagOffset = 0;
inline constexpr std::uint8_t ctaTag = 0x02;
inline constexpr std::uint8_t displayIDTag = 0x70;

/// The CTA-861 block header: revision, where the detailed timings start (d),
/// and the flags with the count of native timings. CTA-861-H 7.3.3 (CTA
/// Extension Version 3).
namespace CTA {
inline constexpr std::size_t revisionOffset = 1;
inline constexpr std::size_t detailedTimingsStartOffset = 2;
inline constexpr std::size_t flagsOffset = 3;
inline constexpr std::uint8_t version3 = 0x03;
/// The data block collection begins after the four header bytes. CTA-861-H 7.4.
inline constexpr std::size_t dataBlocksStart = 4;
} // namespace CTA

/// A DisplayID section inside an extension block, after its tag byte.
namespace DisplayID {
/// The section header: version and revision, bytes of data blocks in the
/// section, product type, extension count. DisplayID 1.3 (section structure).
inline constexpr std::size_t versionOffset = 1;
inline constexpr std::size_t sectionLengthOffset = 2;
inline constexpr std::size_t productTypeOffset = 3;
inline constexpr std::size_t extensionCountOffset = 4;
inline constexpr std::uint8_t version13 = 0x13;
inline constexpr std::uint8_t version20 = 0x20;
/// Product type "extension section". DisplayID 1.3 2.3.
inline constexpr std::uint8_t extensionSection = 0x00;
inline constexpr std::size_t dataBlocksStart = 5;
/// A data block: tag, revision, payload length, then the payload.
inline constexpr std::size_t dataBlockHeaderSize = 3;
inline constexpr std::size_t dataBlockRevisionOffset = 1;
inline constexpr std::size_t dataBlockLengthOffset = 2;
/// Product identification data block: DisplayID 1.3 (tag 0x00) and 2.0 (tag 0x20).
inline constexpr std::uint8_t productIdentificationTag = 0x00;
inline constexpr std::uint8_t productIdentificationTag20 = 0x20;
/// Type I detailed timing data block. DisplayID 1.3 4.4.1.
inline constexpr std::uint8_t typeITimingTag = 0x03;
/// Type VII detailed timing data block (1 kHz clock). DisplayID 2.0 (Type VII timing).
inline constexpr std::uint8_t typeVIITimingTag = 0x22;
/// A detailed timing descriptor of either type; byte 3 bit 7 marks the preferred one.
inline constexpr std::size_t timingSize = 20;
inline constexpr std::size_t timingOptionsOffset = 3;
inline constexpr std::uint8_t preferredFlag = 0x80;
} // namespace DisplayID

} // namespace EDIDKit::Layout
