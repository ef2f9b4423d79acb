#pragma once

#include <EDIDKit/Bytes.hpp>
#include <EDIDKit/EDID.hpp>
#include <EDIDKit/Timing.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace EDIDKit {

/// Composes EDIDs from parts: a base block with chosen detailed timings, a
/// product name and range limits, and optional CTA-861 and DisplayID
/// extensions. The project's sample monitors and test inputs are made with it,
/// so every EDID the project ships is its own.
class EDIDBuilder {
public:
    /// A range limits descriptor as stored: rates in Hz / kHz (before the +255
    /// offsets that `offsetFlags` select), maximum pixel clock in 10 MHz units.
    struct Limits {
        int minVHz = 48;
        int maxVHz = 75;
        int minHKHz = 30;
        int maxHKHz = 160;
        int maxClock10MHz = 60;
        std::uint8_t offsetFlags = 0;
    };

    /// One DisplayID detailed timing: Type I (10 kHz clock) or Type VII (1 kHz clock).
    struct DisplayIDEntry {
        Timing timing;
        bool preferred = false;
        /// For Type VII: the clock in kHz (defaults to pixelClock10kHz × 10).
        std::optional<int> clockKHz;
    };

    /// A CTA-861 video capability data block (selectable quantization,
    /// underscanned IT and CE formats) that conformant sinks carry.
    static inline const Bytes videoCapabilityBlock{0xE2, 0x00, 0xCA};

    EDIDBuilder();

    /// Three upper-case letters, packed as the EDID manufacturer ID.
    EDIDBuilder& manufacturer(std::string_view letters);
    EDIDBuilder& productID(std::uint16_t id);
    EDIDBuilder& serialNumber(std::uint32_t serial);
    EDIDBuilder& screenSizeCM(int horizontal, int vertical);
    /// Appends a detailed timing to the next free base-block slot (the first one
    /// becomes the preferred timing). Its image size is the screen size.
    EDIDBuilder& baseTiming(const Timing& timing);
    /// Appends a product name descriptor ("Halvora 34").
    EDIDBuilder& productName(std::string_view name);
    /// Appends a display range limits descriptor.
    EDIDBuilder& rangeLimits(const Limits& limits);
    /// Appends 18 raw bytes as the next base-block descriptor.
    EDIDBuilder& rawDescriptor(const std::array<std::uint8_t, 18>& descriptor);
    /// Adds a CTA-861 extension block with these data blocks (raw bytes, may be
    /// empty) followed by these detailed timings.
    EDIDBuilder& ctaExtension(const std::vector<Timing>& timings, const Bytes& dataBlocks = {});
    /// Adds a DisplayID extension block holding a product identification block
    /// and one timing data block: Type I (DisplayID 1.3) or, when `typeVII`,
    /// Type VII (DisplayID 2.0).
    EDIDBuilder& displayIDExtension(const std::vector<DisplayIDEntry>& timings, bool typeVII = false);

    /// The bytes, with every checksum set and unused base slots filled with
    /// dummy descriptors.
    Bytes build() const;
    EDID edid() const { return EDID(build()); }

private:
    std::array<std::uint8_t, 18> timingDescriptor(const Timing& timing) const;

    Bytes base_;
    std::vector<std::array<std::uint8_t, 18>> descriptors_;
    std::vector<Bytes> extensions_;
};

} // namespace EDIDKit
