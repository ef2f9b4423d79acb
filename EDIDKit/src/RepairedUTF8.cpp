#include <EDIDKit/RepairedUTF8.hpp>

namespace EDIDKit {

namespace {

constexpr const char* replacementCharacter = "\xEF\xBF\xBD";

/// Length of the well-formed sequence starting at `i`, or the number of bytes
/// to replace by one U+FFFD (the maximal ill-formed prefix, at least 1).
struct Step {
    std::size_t length;
    bool valid;
};

Step nextSequence(std::span<const std::uint8_t> s, std::size_t i) {
    const std::uint8_t lead = s[i];
    if (lead < 0x80) return {1, true};
    std::size_t need = 0;
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        need = 1;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        need = 2;
        if (lead == 0xE0) low = 0xA0;  // no overlong forms
        if (lead == 0xED) high = 0x9F; // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        need = 3;
        if (lead == 0xF0) low = 0x90;  // no overlong forms
        if (lead == 0xF4) high = 0x8F; // nothing above U+10FFFF
    } else {
        return {1, false};
    }
    for (std::size_t k = 1; k <= need; ++k) {
        if (i + k >= s.size()) return {k, false};
        const std::uint8_t c = s[i + k];
        const std::uint8_t lo = k == 1 ? low : 0x80;
        const std::uint8_t hi = k == 1 ? high : 0xBF;
        if (c < lo || c > hi) return {k, false};
    }
    return {need + 1, true};
}

} // namespace

std::string repairedUTF8(std::span<const std::uint8_t> bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const Step step = nextSequence(bytes, i);
        if (step.valid)
            out.append(reinterpret_cast<const char*>(bytes.data() + i), step.length);
        else
            out.append(replacementCharacter);
        i += step.length;
    }
    return out;
}

} // namespace EDIDKit
