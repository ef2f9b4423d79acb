#include <HalvoraCore/PendingChange.hpp>

namespace HalvoraCore {

PendingChange::~PendingChange() {
    OwnedTimers::cancel(settle_);
    OwnedTimers::cancel(revertFollowUp_);
    if (pending_) pending_->timeout.cancel();
}

void PendingChange::writeAndSettle(const EDIDKit::Bytes& edid, const DisplayID& display,
                                   std::optional<DisplayMode> mode) {
    writer_.writeOverride(edid, display);
    modes_.noteApplied(timers_.now());
    timers_.restart(settle_, settleDelay, [this, display, mode] {
        settle_.reset();
        host_.restoreMode(mode, display);
    });
}

void PendingChange::open(const DisplayID& display, EDIDKit::Bytes target, EDIDKit::Bytes previousEDID,
                         std::optional<DisplayMode> previousMode) {
    writeAndSettle(target, display, previousMode);
    // A revert's follow-up would put the EDID from before that revert back
    // over this new change.
    OwnedTimers::cancel(revertFollowUp_);
    host_.changeOpened();
    ScheduledTask timeout = timers_.after(confirmationTimeout, [this] { revert(); });
    pending_ = Pending{{display, timers_.now() + confirmationTimeout}, std::move(target), std::move(previousEDID),
                       previousMode, timeout};
}

void PendingChange::keep() {
    if (!pending_) return;
    Pending kept = std::move(*pending_);
    pending_.reset();
    kept.timeout.cancel();
    tellProgress(true);
    monitors_.keepOverride(kept.confirmation.display, kept.appliedEDID, kept.previousMode);
    host_.changed();
}

void PendingChange::revert() {
    if (!pending_) return;
    const DisplayID display = pending_->confirmation.display;
    if (!monitors_.reportedEDID(display)) {
        // The monitor went away: nothing is left on it to take back.
        closeQuietly();
        return;
    }
    Pending reverted = std::move(*pending_);
    pending_.reset();
    reverted.timeout.cancel();
    OwnedTimers::cancel(settle_);
    tellProgress(false);
    try {
        writer_.restoreFactory(display);
    } catch (const SplitError& error) {
        writer_.noteAttempt();
        host_.report(error);
    }
    host_.changed();
    timers_.restart(revertFollowUp_, settleDelay,
                    [this, display, reverted] { followUpRevert(display, reverted); });
}

void PendingChange::followUpRevert(const DisplayID& display, const Pending& reverted) {
    revertFollowUp_.reset();
    const auto reported = monitors_.reportedEDID(display);
    if (reported && *reported != reverted.previousEDID) {
        // Removing the override did not bring back what was there before (an
        // override kept in an earlier run, say): put that back, then the mode.
        try {
            writer_.writeOverride(reverted.previousEDID, display);
        } catch (const SplitError& error) {
            writer_.noteAttempt();
            host_.report(error);
        }
        revertFollowUp_ = timers_.after(settleDelay, [this, display, mode = reverted.previousMode] {
            revertFollowUp_.reset();
            host_.restoreMode(mode, display);
        });
        return;
    }
    host_.restoreMode(reverted.previousMode, display);
}

void PendingChange::closeQuietly() {
    if (!pending_) return;
    pending_->timeout.cancel();
    pending_.reset();
    OwnedTimers::cancel(settle_);
    tellProgress(false);
    host_.changed();
}

void PendingChange::revertForQuit() {
    if (!pending_) return;
    const Pending closing = *pending_;
    closeQuietly();
    const DisplayID& display = closing.confirmation.display;
    if (!monitors_.reportedEDID(display)) return;
    try {
        // A confirmed override that was on the display before goes back on;
        // anything else gives way to the monitor's own EDID.
        if (monitors_.isSavedOverride(closing.previousEDID))
            writer_.writeOverride(closing.previousEDID, display);
        else
            writer_.restoreFactory(display);
    } catch (const SplitError&) {
        // Quitting goes on.
    }
}

void PendingChange::cancelFollowUps() {
    OwnedTimers::cancel(settle_);
    OwnedTimers::cancel(revertFollowUp_);
}

std::optional<PendingConfirmation> PendingChange::confirmation() const {
    if (!pending_) return std::nullopt;
    return pending_->confirmation;
}

void PendingChange::tellProgress(bool kept) {
    const auto progress = progress_.lock();
    progress_.reset();
    if (progress) progress->confirmationEnded(kept);
}

} // namespace HalvoraCore
