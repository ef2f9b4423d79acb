#include "RewriteInvariants.hpp"

#include <algorithm>
#include <numeric>

namespace TestSupport {

std::optional<std::string> rewriteViolation(const EDIDKit::EDID& before, const EDIDKit::EDID& after,
                                            bool baseMayChange, std::size_t maxCTABlocks) {
    const auto& a = before.bytes();
    const auto& b = after.bytes();
    if (a.size() != b.size()) return "the length changed";
    try {
        EDIDKit::EDID revalidated(b);
    } catch (const EDIDKit::EDIDError& error) {
        return "the result does not re-validate: " + error.description();
    }
    constexpr std::size_t blockSize = EDIDKit::EDID::blockSize;
    constexpr auto blockLength = static_cast<std::ptrdiff_t>(blockSize);
    const auto ctaBlocks = before.ctaBlockStarts();
    std::size_t ctaChanged = 0;
    for (std::size_t start = 0; start < a.size(); start += blockSize) {
        const auto offset = static_cast<std::ptrdiff_t>(start);
        if (std::equal(a.begin() + offset, a.begin() + offset + blockLength, b.begin() + offset))
            continue;
        const unsigned sum =
            std::accumulate(b.begin() + offset, b.begin() + offset + blockLength, 0u);
        if (sum % 256 != 0)
            return "the checksum of changed block " + std::to_string(start / blockSize) +
                   " is wrong";
        if (start == 0) {
            if (!baseMayChange) return "the base block changed";
        } else if (std::find(ctaBlocks.begin(), ctaBlocks.end(), start) == ctaBlocks.end()) {
            return "block " + std::to_string(start / blockSize) + ", which is not CTA-861, changed";
        } else {
            ++ctaChanged;
        }
    }
    if (ctaChanged > maxCTABlocks) return std::to_string(ctaChanged) + " CTA-861 blocks changed";
    if (before.isChecksumValid() && !after.isChecksumValid()) return "a valid EDID became invalid";
    if (before.displayIDTimings() != after.displayIDTimings()) return "the DisplayID timings changed";
    return std::nullopt;
}

} // namespace TestSupport
