#pragma once

#include <EDIDKit/Resolution.hpp>
#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace EDIDKit {

/// Physical image size of a timing in millimetres, as a detailed timing
/// descriptor stores it.
struct ImageSize {
    int horizontal = 0;
    int vertical = 0;
    friend bool operator==(const ImageSize&, const ImageSize&) = default;
};

/// One complete video timing. Polarity, interlace, borders and image size are
/// not part of the value: two descriptors that differ only in those describe
/// the same Timing.
struct Timing {
    int pixelClock10kHz = 0; ///< pixel clock in units of 10 kHz
    int width = 0;           ///< horizontal active pixels
    int hBlank = 0;
    int hFrontPorch = 0;
    int hSync = 0;
    int height = 0; ///< vertical active lines (a field's lines for an interlaced timing)
    int vBlank = 0;
    int vFrontPorch = 0;
    int vSync = 0;

    /// Line rate in kHz.
    double hRateKHz() const;
    /// Frame (or field) rate in Hz.
    double refreshRate() const;
    Resolution resolution() const { return {width, height}; }
    /// Whether width, blanking and pixel clock fit the 12- and 16-bit fields of
    /// an 18-byte detailed timing descriptor. A pixel clock of 0 does not: the
    /// slot would read as a display descriptor.
    bool fitsDescriptor() const;

    /// The lowest pixel clock, in 10 kHz, of a detailed timing that reference
    /// decoders keep: edid-decode, for one, takes a clock under 10 MHz for
    /// invalid data and drops the timing.
    static constexpr int minimumKeptPixelClock10kHz = 1000;
    /// Whether a decoder would keep this timing once written (see above).
    bool isKeptByDecoders() const { return pixelClock10kHz >= minimumKeptPixelClock10kHz; }

    /// Decodes an 18-byte detailed timing descriptor; absent for any other
    /// length and for a display descriptor (pixel clock 0).
    static std::optional<Timing> fromDescriptor(std::span<const std::uint8_t> descriptor);

    /// Decodes a 20-byte DisplayID detailed timing (Type I, or Type VII when
    /// `clockIn1kHz`); absent when fewer than 20 bytes are given.
    static std::optional<Timing> fromDisplayID(std::span<const std::uint8_t> descriptor,
                                               bool clockIn1kHz);

    /// The 18-byte detailed timing descriptor: non-interlaced, digital separate
    /// sync with the reduced-blanking polarities, no borders. Fields wider than
    /// the descriptor's bit fields are cut to them; check `fitsDescriptor` first.
    std::array<std::uint8_t, 18> descriptorBytes(ImageSize imageSizeMM) const;

    /// VESA CVT reduced-blanking (version 1) timing, no interlace, no margins.
    static Timing cvtReducedBlanking(int width, int height, double refresh);

    friend bool operator==(const Timing&, const Timing&) = default;
};

} // namespace EDIDKit
