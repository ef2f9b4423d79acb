#pragma once

#include <HalvoraCore/ApplyOutcome.hpp>

#include <limits>

namespace HalvoraCore {

/// Decides whether the mode a display shows is worth remembering: nothing is
/// recorded during the quiet period that follows a mode the system applied or
/// a configuration change it saw, because the display is then still settling.
struct ModeMemory {
    static constexpr double quietPeriod = 10.0;

    /// End of the current quiet period, in scheduler seconds.
    double quietUntil = -std::numeric_limits<double>::infinity();

    /// Extends the quiet period to at least `at` + 10 s; never shortens it.
    void noteApplied(double at);
    /// Same as `noteApplied`: a configuration change also needs time to settle.
    void noteDisplayChange(double at);
    /// True exactly for `alreadyActive` at or after the end of the quiet period.
    bool shouldRecord(ApplyOutcome outcome, double at) const;
};

} // namespace HalvoraCore
