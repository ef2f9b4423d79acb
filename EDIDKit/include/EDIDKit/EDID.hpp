#pragma once

#include <EDIDKit/Bytes.hpp>
#include <EDIDKit/EDIDError.hpp>
#include <EDIDKit/NativeResolutionGuess.hpp>
#include <EDIDKit/RangeLimits.hpp>
#include <EDIDKit/Resolution.hpp>
#include <EDIDKit/SplitLayout.hpp>
#include <EDIDKit/Timing.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace EDIDKit {

/// A detailed timing read from a DisplayID section, with its preferred flag.
struct DisplayIDTiming {
    Timing timing;
    bool preferred = false;
    friend bool operator==(const DisplayIDTiming&, const DisplayIDTiming&) = default;
};

/// The descriptor area of one CTA-861 block: offsets (into the whole EDID) of
/// the slots holding timings, and of the first free slot if there is one.
struct CTADescriptorSlots {
    std::vector<std::size_t> occupied;
    std::optional<std::size_t> free;
    friend bool operator==(const CTADescriptorSlots&, const CTADescriptorSlots&) = default;
};

struct DecodedEDID;
class RewriteResult;

/// An immutable EDID: the bytes a display reports, or an override written for
/// it. The bytes are validated and decoded once, on construction; every
/// accessor then answers from that and never fails. Every rewrite returns a new
/// EDID (with the checksum of each changed block recomputed) and leaves this
/// one as it was.
class EDID {
public:
    /// Throws EDIDError::invalidLength when the length is not a positive
    /// multiple of 128 or is more than 256 blocks (the base block and the 255
    /// extensions its one-byte count can announce), then EDIDError::invalidHeader when the bytes do
    /// not begin with 00 FF FF FF FF FF FF 00. Checksums are not verified here.
    explicit EDID(Bytes data);

    const Bytes& data() const noexcept { return bytes_; }
    const Bytes& bytes() const noexcept { return bytes_; }
    std::size_t blockCount() const noexcept { return bytes_.size() / 128; }

    /// Every 128-byte block sums to 0 modulo 256.
    bool isChecksumValid() const;

    /// The manufacturer ID exactly as stored (bytes 8–9, big-endian).
    std::uint32_t vendorID() const;
    /// The product code (bytes 10–11, little-endian).
    std::uint32_t productID() const;
    /// The serial number (bytes 12–15, little-endian).
    std::uint32_t serialNumber() const;
    /// The first display product name descriptor of the base block: up to the
    /// first line feed, UTF-8 with invalid bytes replaced, spaces and tabs trimmed.
    std::optional<std::string> productName() const;

    /// The size of the base block's first detailed timing: the base block's
    /// preference. A monitor too wide for the base block states its real
    /// preference in DisplayID; ask `monitorPreferredResolution` for that.
    std::optional<Resolution> preferredResolution() const;
    /// The resolution the monitor asks a computer to run at, as macOS reads it:
    /// the first DisplayID timing flagged preferred, else the base block's
    /// first detailed timing (`preferredResolution`).
    std::optional<Resolution> monitorPreferredResolution() const;
    /// The panel's true resolution: the preferred one, unless a DisplayID
    /// section offers a strictly larger preferred (or else largest) timing.
    std::optional<Resolution> nativeResolution() const;
    /// The base block's first display range limits descriptor, when it is sound.
    std::optional<RangeLimits> rangeLimits() const;
    /// The base block's four slots, then every CTA-861 block's descriptor area,
    /// keeping the slots that decode as timings.
    const std::vector<Timing>& detailedTimings() const&;
    std::vector<Timing> detailedTimings() const&&;
    /// Type I and Type VII detailed timings of every DisplayID section, in order.
    const std::vector<DisplayIDTiming>& displayIDTimings() const&;
    std::vector<DisplayIDTiming> displayIDTimings() const&&;
    /// Whether the native resolution is a whole panel or one part of one.
    std::optional<NativeResolutionGuess> nativeResolutionGuess() const;

    /// Offsets of the CTA-861 extension blocks (tag 0x02), in block order.
    const std::vector<std::size_t>& ctaBlockStarts() const&;
    std::vector<std::size_t> ctaBlockStarts() const&&;
    /// The descriptor slots of the CTA-861 block starting at `blockStart`.
    CTADescriptorSlots ctaDescriptorOffsets(std::size_t blockStart) const;

    /// Whether a detailed or DisplayID timing has this width and height.
    bool hasTiming(Resolution resolution) const;
    /// The image size of the first descriptor (base block, then CTA blocks)
    /// whose timing has this width and height.
    std::optional<ImageSize> imageSizeMM(Resolution resolution) const;

    /// Makes sure the native timing is the preferred one and that the split
    /// timing of `layout` is listed, synthesising CVT reduced-blanking timings
    /// at 60 Hz for whichever is missing. Returns an equal EDID when both are there.
    EDID addingSplit(SplitLayout layout, Resolution ofNative) const;
    /// `addingSplit` without throwing: the split EDID, or the EDIDError that
    /// `addingSplit` throws (include <EDIDKit/RewriteResult.hpp> to use it).
    RewriteResult tryAddingSplit(SplitLayout layout, Resolution ofNative) const;
    /// Adds the first detailed timing of `other` (what the monitor reports in
    /// picture-by-picture mode) to this EDID.
    EDID mergingSplitVersion(const EDID& other) const;
    /// Adds a timing to a CTA-861 block: the first free slot, else in place of
    /// the least valuable timing that is not native, preferred, the new one's
    /// size or in `keeping`.
    EDID adding(const Timing& timing, const std::vector<Resolution>& keeping) const;
    /// Makes `timing` the base block's first (preferred) descriptor, rescales
    /// the screen size, and moves the previous preferred descriptor byte for
    /// byte into a CTA-861 block.
    EDID promotingToPreferred(const Timing& timing) const;
    /// Gives every block whose checksum is wrong the checksum of its content,
    /// taking the content as it is. Returns an equal EDID when all are right.
    EDID fixingChecksums() const;

    // --- Parsing without throwing, and named edits (EDIDEdits.cpp) -----------
    // Each edit returns a new EDID that differs from this one in what it names
    // and in the checksum of the block that holds it, recomputed; the other
    // blocks, checksums included, are left as they are.

    /// The EDID in these bytes, or nothing where the constructor would throw.
    static std::optional<EDID> tryParse(Bytes data);

    /// The size of every block, the base block and each extension.
    static constexpr std::size_t blockSize = 128;
    /// The size of a descriptor slot: a detailed timing or a display descriptor.
    static constexpr std::size_t descriptorSize = 18;

    /// The week of manufacture (byte 16): 1–54, 0 when not given, 0xFF when
    /// the year is a model year.
    std::uint8_t manufactureWeek() const;
    /// The screen size in whole centimetres (bytes 21 and 22); 0 where not given.
    int screenWidthCM() const;
    int screenHeightCM() const;
    /// The number of extension blocks the base block announces (byte 126),
    /// whether or not that many follow.
    std::size_t extensionCount() const;
    /// The checksum byte stored at the end of block `block` (0 for the base
    /// block), right or wrong. Throws std::out_of_range past the last block.
    std::uint8_t storedChecksum(std::size_t block) const;
    /// The offsets of every 18-byte slot: the base block's four, then, for
    /// each CTA-861 block in order, every slot of its descriptor area, used or free.
    std::vector<std::size_t> descriptorSlotOffsets() const;

    /// Another serial number (bytes 12–15).
    EDID withSerial(std::uint32_t serial) const;
    /// The manufacturer ID, product code and serial number of `other`: this
    /// EDID made to speak for `other`'s monitor.
    EDID withIdentityOf(const EDID& other) const;
    /// Another week of manufacture.
    EDID withManufactureWeek(std::uint8_t week) const;
    /// Another screen size in centimetres.
    EDID withScreenSizeCM(std::uint8_t horizontal, std::uint8_t vertical) const;
    /// Every product name descriptor of the base block becomes a dummy
    /// descriptor, so that the EDID names no product.
    EDID withoutProductName() const;
    /// The text of the base block's first product name descriptor: the first
    /// 13 bytes of `name`, a shorter one ended by a line feed and padded with
    /// spaces. An EDID without such a descriptor is returned as it is.
    EDID withProductName(std::string_view name) const;
    /// The base block announces `count` extension blocks; the blocks that
    /// follow stay as they are.
    EDID withExtensionCount(std::uint8_t count) const;
    /// The base block alone, announcing no extension blocks.
    EDID withoutExtensions() const;
    /// Block `block`'s checksum byte one more than its content needs, so that
    /// the block no longer sums to 0. Throws std::out_of_range past the last block.
    EDID withBrokenChecksum(std::size_t block = 0) const;

    /// Equal bytes, byte for byte.
    friend bool operator==(const EDID& a, const EDID& b) noexcept { return a.bytes_ == b.bytes_; }

private:
    /// Bytes a rewrite made from a valid EDID: their length and header are
    /// those of the EDID they came from, so they are decoded without checking.
    struct Rewritten {};
    EDID(Bytes data, Rewritten);

    std::uint8_t at(std::size_t offset) const { return bytes_[offset]; }
    std::optional<Timing> timingAt(std::size_t offset) const;
    ImageSize imageSize(const Timing& timing) const;
    RewriteResult tryAdding(const Timing& timing, std::span<const Resolution> keeping) const;
    RewriteResult tryPromotingToPreferred(const Timing& timing) const;

    Bytes bytes_;
    std::shared_ptr<const DecodedEDID> decoded_;
};

/// The last byte that makes the 128-byte block starting at `blockStart` sum
/// to 0 modulo 256.
std::uint8_t blockChecksum(const Bytes& bytes, std::size_t blockStart);

/// Sets the last byte of the 128-byte block starting at `blockStart` so that
/// the block sums to 0 modulo 256.
void fixBlockChecksum(Bytes& bytes, std::size_t blockStart);

} // namespace EDIDKit
