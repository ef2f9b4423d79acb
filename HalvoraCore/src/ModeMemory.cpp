#include <HalvoraCore/ModeMemory.hpp>

#include <algorithm>

namespace HalvoraCore {

void ModeMemory::noteApplied(double at) { quietUntil = std::max(quietUntil, at + quietPeriod); }

void ModeMemory::noteDisplayChange(double at) { noteApplied(at); }

bool ModeMemory::shouldRecord(ApplyOutcome outcome, double at) const {
    return outcome == ApplyOutcome::alreadyActive && at >= quietUntil;
}

} // namespace HalvoraCore
