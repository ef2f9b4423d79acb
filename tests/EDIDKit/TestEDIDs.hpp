#pragma once

// Small EDIDs for the EDIDKit tests, built from parts so that each test shows
// what it depends on.

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDBuilder.hpp>
#include <cstddef>
#include <numeric>
#include <vector>

namespace EDIDKit::testing {

inline Timing cvt(int width, int height) { return Timing::cvtReducedBlanking(width, height, 60); }

/// A 34" ultrawide that lists only its native 3440×1440 (plus 1080p in its CTA block).
inline EDIDBuilder ultrawideBuilder() {
    EDIDBuilder b;
    b.screenSizeCM(80, 34).baseTiming(cvt(3440, 1440)).productName("Halvora 34").rangeLimits({});
    return b;
}

inline EDID ultrawide() { return ultrawideBuilder().ctaExtension({cvt(1920, 1080)}).edid(); }

/// Six timings of one size at slightly different clocks: enough to fill a
/// CTA-861 block's descriptor area.
inline std::vector<Timing> sixTimingsOf(int width, int height) {
    std::vector<Timing> timings;
    for (int i = 0; i < 6; ++i) {
        Timing t = cvt(width, height);
        t.pixelClock10kHz -= 10 * (i + 1);
        timings.push_back(t);
    }
    return timings;
}

/// Whether the 128-byte block starting at `start` sums to 0 modulo 256.
inline bool blockChecksumHolds(const Bytes& bytes, std::size_t start) {
    return std::accumulate(bytes.begin() + static_cast<std::ptrdiff_t>(start),
                           bytes.begin() + static_cast<std::ptrdiff_t>(start + 128), 0u) % 256 == 0;
}

/// Changes one byte and repairs the block's checksum.
inline Bytes withByte(Bytes bytes, std::size_t offset, std::uint8_t value) {
    bytes[offset] = value;
    fixBlockChecksum(bytes, offset / 128 * 128);
    return bytes;
}

inline std::array<std::uint8_t, 18> descriptorOf(const Timing& t, ImageSize size = {}) {
    return t.descriptorBytes(size);
}

} // namespace EDIDKit::testing
