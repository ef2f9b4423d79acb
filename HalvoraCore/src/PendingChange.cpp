#include <HalvoraCore/PendingChange.hpp>

#include <HalvoraCore/SettingsRecords.hpp>

#include <EDIDKit/EDIDComparison.hpp>

namespace HalvoraCore {

PendingChange::~PendingChange() {
    OwnedTimers::cancel(revertFollowUp_);
    if (pending_) pending_->timeout.cancel();
}

void PendingChange::open(const AttachedMonitor& monitor, EDIDKit::Bytes target,
                         std::optional<DisplayMode> previousMode) {
    const DisplayID display = monitor.id();
    settling_.writeAndSettle(target, display, previousMode);
    // A revert's follow-up would put the EDID from before that revert back
    // over this new change.
    OwnedTimers::cancel(revertFollowUp_);
    host_.changeOpened();
    ScheduledTask timeout = timers_.after(confirmationTimeout, [this] { revert(); });
    setPending(Pending{{display, timers_.now() + confirmationTimeout},
                       monitor.key,
                       monitor.display.port,
                       std::move(target),
                       monitor.reported(),
                       previousMode,
                       timeout});
}

void PendingChange::keep() {
    if (!pending_) return;
    // A monitor unplugged during the confirmation took the change with it.
    if (!monitors_.display(pending_->confirmation.display)) {
        closeQuietly();
        return;
    }
    Pending kept = std::move(*pending_);
    setPending(std::nullopt);
    kept.timeout.cancel();
    // Saved under the record the change was opened for: what the port
    // reports now may be our override with another identity stamped on it.
    const bool saved = monitors_.updateRecord(kept.record, kept.port, [&](DisplaySettings& s) {
        s.overrideEDID = kept.appliedEDID;
        if (kept.previousMode) s.lastMode = kept.previousMode;
    });
    tellProgress(saved);
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
    setPending(std::nullopt);
    reverted.timeout.cancel();
    settling_.cancel();
    tellProgress(false);
    try {
        writer_.restoreFactory(display);
    } catch (const SplitError& error) {
        writer_.noteAttempt();
        host_.report(error);
    }
    host_.changed();
    timers_.restart(revertFollowUp_, Settling::settleDelay,
                    [this, display, reverted] { followUpRevert(display, reverted); });
}

void PendingChange::followUpRevert(const DisplayID& display, const Pending& reverted) {
    revertFollowUp_.reset();
    const auto reported = monitors_.reportedEDID(display);
    if (reported && !EDIDKit::sameApartFromIdentity(*reported, reverted.previousEDID)) {
        // Removing the override did not bring back what was there before (an
        // override kept in an earlier run, say): put that back, then the mode.
        try {
            writer_.writeOverride(previousToWrite(reverted), display);
        } catch (const SplitError& error) {
            writer_.noteAttempt();
            host_.report(error);
        }
        revertFollowUp_ =
            timers_.after(Settling::settleDelay, [this, display, mode = reverted.previousMode] {
                revertFollowUp_.reset();
                host_.restoreMode(mode, display);
            });
        return;
    }
    host_.restoreMode(reverted.previousMode, display);
}

EDIDKit::Bytes PendingChange::previousToWrite(const Pending& change) const {
    const auto record = monitors_.record(change.record);
    if (record && showsOverride(change.previousEDID, *record)) return *record->overrideEDID;
    return change.previousEDID;
}

void PendingChange::closeQuietly() {
    if (!pending_) return;
    pending_->timeout.cancel();
    setPending(std::nullopt);
    settling_.cancel();
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
        const auto record = monitors_.record(closing.record);
        if (record && showsOverride(closing.previousEDID, *record))
            writer_.writeOverride(*record->overrideEDID, display);
        else
            writer_.restoreFactory(display);
    } catch (const SplitError&) {
        // Quitting goes on.
    }
}

void PendingChange::cancelFollowUps() {
    settling_.cancel();
    OwnedTimers::cancel(revertFollowUp_);
}

void PendingChange::setPending(std::optional<Pending> pending) {
    pending_ = std::move(pending);
    if (pending_)
        monitors_.noteUnconfirmed(
            UnconfirmedOverride{pending_->confirmation.display, pending_->appliedEDID, pending_->record});
    else
        monitors_.noteUnconfirmed(std::nullopt);
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
