#pragma once

#include <HalvoraCore/ConflictProbe.hpp>

#include <memory>

namespace HalvoraCore {

/// The other tools that write override EDIDs, as last probed. While one is
/// active nothing is restored; once they are all gone, what they left on the
/// displays is cleared, once.
class ConflictWatch {
public:
    explicit ConflictWatch(std::shared_ptr<ConflictProbe> probe) : probe_(std::move(probe)) {}

    const ConflictSet& conflicts() const { return conflicts_; }
    /// Probes again; true when the set of conflicting tools changed.
    bool refresh();
    /// Stops a conflicting tool. Throws SplitError.
    void takeOver(ConflictingTool tool);
    /// Whether the tools went away since the last time this was asked: what
    /// they left on the displays is then due to be cleared.
    bool takeClearingDue();

private:
    std::shared_ptr<ConflictProbe> probe_;
    ConflictSet conflicts_;
    bool clearingDue_ = false;
};

} // namespace HalvoraCore
