#pragma once

#include <EDIDKit/Timing.hpp>

namespace EDIDKit {

/// A closed range lowerBound…upperBound.
struct ClosedRange {
    int lowerBound = 0;
    int upperBound = 0;
    friend bool operator==(const ClosedRange&, const ClosedRange&) = default;
};

/// The rates and pixel clock a display declares it accepts (its display range
/// limits descriptor).
struct RangeLimits {
    ClosedRange vRateHz;
    ClosedRange hRateKHz;
    int maxPixelClock10kHz = 0;

    int maxHRateKHz() const { return hRateKHz.upperBound; }

    /// Whether the display takes the timing: pixel clock at most the maximum,
    /// line and frame rates at most 1 kHz / 1 Hz above the maxima (so a clock
    /// rounded to 0.25 MHz just over a limit still passes). Lower bounds are
    /// not checked.
    bool accepts(const Timing& timing) const;

    friend bool operator==(const RangeLimits&, const RangeLimits&) = default;
};

} // namespace EDIDKit
