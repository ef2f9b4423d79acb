#include <HalvoraCore/ConflictWatch.hpp>

#include <HalvoraCore/SplitError.hpp>

namespace HalvoraCore {

bool ConflictWatch::refresh() {
    ConflictSet found = probe_->detect();
    if (found == conflicts_) return false;
    if (!conflicts_.empty() && found.empty()) clearingDue_ = true;
    conflicts_ = std::move(found);
    return true;
}

void ConflictWatch::takeOver(ConflictingTool tool) {
    try {
        probe_->takeOver(tool);
    } catch (...) {
        throw SplitError::wrappingCurrentException();
    }
}

bool ConflictWatch::takeClearingDue() {
    const bool due = clearingDue_;
    clearingDue_ = false;
    return due;
}

} // namespace HalvoraCore
