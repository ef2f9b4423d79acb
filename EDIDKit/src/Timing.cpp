#include <EDIDKit/Timing.hpp>
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace EDIDKit {

double Timing::hRateKHz() const {
    return static_cast<double>(pixelClock10kHz) * 10.0 / static_cast<double>(width + hBlank);
}

double Timing::refreshRate() const {
    const double total = static_cast<double>(width + hBlank) * static_cast<double>(height + vBlank);
    return static_cast<double>(pixelClock10kHz) * 10000.0 / total;
}

bool Timing::fitsDescriptor() const {
    // A pixel clock of 0 would make the slot read as a display descriptor.
    const auto fits12Bits = [](int value) { return value >= 0 && value < 4096; };
    return fits12Bits(width) && fits12Bits(hBlank) && fits12Bits(height) && fits12Bits(vBlank) &&
           pixelClock10kHz >= 1 && pixelClock10kHz < 65536;
}

std::optional<Timing> Timing::fromDescriptor(std::span<const std::uint8_t> d) {
    if (d.size() != 18 || (d[0] == 0 && d[1] == 0)) return std::nullopt;
    Timing t;
    t.pixelClock10kHz = d[0] + 256 * d[1];
    t.width = d[2] + 256 * (d[4] >> 4);
    t.hBlank = d[3] + 256 * (d[4] & 0x0F);
    t.height = d[5] + 256 * (d[7] >> 4);
    t.vBlank = d[6] + 256 * (d[7] & 0x0F);
    t.hFrontPorch = d[8] + 256 * (d[11] >> 6);
    t.hSync = d[9] + 256 * ((d[11] >> 4) & 3);
    t.vFrontPorch = (d[10] >> 4) + 16 * ((d[11] >> 2) & 3);
    t.vSync = (d[10] & 0x0F) + 16 * (d[11] & 3);
    return t;
}

std::optional<Timing> Timing::fromDisplayID(std::span<const std::uint8_t> e, bool clockIn1kHz) {
    if (e.size() < 20) return std::nullopt;
    const auto field16 = [&](std::size_t i) { return (e[i] | (e[i + 1] << 8)) + 1; };
    // Bit 15 of the two porch fields is the sync polarity, not part of the porch.
    const auto porch = [&](std::size_t i) { return (e[i] | ((e[i + 1] & 0x7F) << 8)) + 1; };
    const int rawClock = (e[0] | (e[1] << 8) | (e[2] << 16)) + 1;
    Timing t;
    t.pixelClock10kHz = clockIn1kHz ? rawClock / 10 : rawClock;
    t.width = field16(4);
    t.hBlank = field16(6);
    t.hFrontPorch = porch(8);
    t.hSync = field16(10);
    t.height = field16(12);
    t.vBlank = field16(14);
    t.vFrontPorch = porch(16);
    t.vSync = field16(18);
    return t;
}

std::array<std::uint8_t, 18> Timing::descriptorBytes(ImageSize imageSizeMM) const {
    const auto byte = [](int value) { return static_cast<std::uint8_t>(value & 0xFF); };
    const auto bits = [](int value, int shift, int mask) { return (value >> shift) & mask; };
    const int h = imageSizeMM.horizontal;
    const int v = imageSizeMM.vertical;
    return {
        byte(pixelClock10kHz),
        byte(pixelClock10kHz >> 8),
        byte(width),
        byte(hBlank),
        byte(bits(width, 8, 0x0F) << 4 | bits(hBlank, 8, 0x0F)),
        byte(height),
        byte(vBlank),
        byte(bits(height, 8, 0x0F) << 4 | bits(vBlank, 8, 0x0F)),
        byte(hFrontPorch),
        byte(hSync),
        byte((vFrontPorch & 0x0F) << 4 | (vSync & 0x0F)),
        byte(bits(hFrontPorch, 8, 3) << 6 | bits(hSync, 8, 3) << 4 | bits(vFrontPorch, 4, 3) << 2 |
             bits(vSync, 4, 3)),
        byte(h),
        byte(v),
        byte(bits(h, 8, 0x0F) << 4 | bits(v, 8, 0x0F)),
        0,
        0,
        // Non-interlaced, digital separate sync, +hsync -vsync: the polarity
        // pair of reduced blanking.
        0x1A,
    };
}

namespace {

/// Vertical sync width that CVT assigns to the aspect ratio, by exact proportion.
int cvtVSync(int width, int height) {
    const auto is = [&](std::int64_t a, std::int64_t b) {
        return std::int64_t{width} * b == std::int64_t{height} * a;
    };
    if (is(4, 3)) return 4;
    if (is(16, 9)) return 5;
    if (is(16, 10)) return 6;
    if (is(5, 4)) return 7;
    if (is(15, 9)) return 7;
    return 10;
}

/// Truncates toward zero into [0, limit]; NaN becomes 0. Keeps the conversion
/// defined for absurd inputs (a zero height, a refresh rate beyond reason).
int clampedTruncation(double value, double limit) {
    if (!(value > 0)) return 0;
    return static_cast<int>(std::min(std::trunc(value), limit));
}

} // namespace

Timing Timing::cvtReducedBlanking(int width, int height, double refresh) {
    constexpr int hBlank = 160;
    constexpr double minVBlankMicroseconds = 460.0;
    constexpr int vFrontPorch = 3;
    constexpr int minVBackPorch = 6;
    const int vSync = cvtVSync(width, height);
    const double linePeriod = (1'000'000.0 / refresh - minVBlankMicroseconds) / height;
    const int vBlank = std::max(clampedTruncation(minVBlankMicroseconds / linePeriod, 1e6) + 1,
                                vSync + vFrontPorch + minVBackPorch);
    const double total = static_cast<double>(width + hBlank) * static_cast<double>(height + vBlank);
    // The clock is rounded down to a multiple of 0.25 MHz, i.e. 25 units of 10 kHz.
    const int quarterMegahertz = clampedTruncation(refresh * total * 4.0 / 1'000'000.0, 8e7);
    return Timing{quarterMegahertz * 25, width, hBlank, 48, 32, height, vBlank, vFrontPorch, vSync};
}

} // namespace EDIDKit
