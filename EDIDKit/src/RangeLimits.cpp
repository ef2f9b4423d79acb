#include <EDIDKit/RangeLimits.hpp>

namespace EDIDKit {

bool RangeLimits::accepts(const Timing& timing) const {
    constexpr double tolerance = 1.0;
    if (timing.pixelClock10kHz > maxPixelClock10kHz) return false;
    if (!(timing.hRateKHz() <= hRateKHz.upperBound + tolerance)) return false;
    return timing.refreshRate() <= vRateHz.upperBound + tolerance;
}

} // namespace EDIDKit
