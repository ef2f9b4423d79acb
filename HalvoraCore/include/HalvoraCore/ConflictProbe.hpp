#pragma once

#include <functional>
#include <set>

namespace HalvoraCore {

/// Other programs that also write override EDIDs.
enum class ConflictingTool {
    edidOverrideService, ///< a background EDID override service is loaded
    betterDisplay,       ///< BetterDisplay applies EDID overrides automatically
};

/// Whether Halvora Pro can stop the tool itself (only the override service).
inline bool canTakeOver(ConflictingTool tool) { return tool == ConflictingTool::edidOverrideService; }

using ConflictSet = std::set<ConflictingTool>;

/// Finds the conflicting tools that are active, and stops one.
class ConflictProbe {
public:
    virtual ~ConflictProbe() = default;
    virtual ConflictSet detect() = 0;
    /// Stops the tool from interfering; may throw an error of any type.
    virtual void takeOver(ConflictingTool tool) = 0;
};

/// The probe that finds nothing: restoring is never held back.
class NoConflictProbe final : public ConflictProbe {
public:
    ConflictSet detect() override { return {}; }
    void takeOver(ConflictingTool) override {}
};

} // namespace HalvoraCore
