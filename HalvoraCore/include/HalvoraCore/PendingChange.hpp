#pragma once

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/DisplayState.hpp>
#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/IdentificationProgress.hpp>
#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/OwnedTimers.hpp>
#include <HalvoraCore/Settling.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <EDIDKit/Bytes.hpp>

#include <memory>
#include <optional>
#include <string>

namespace HalvoraCore {

/// A written override the user has not confirmed yet: it reverts by itself
/// after 15 s unless kept.
class PendingChange {
public:
    static constexpr double confirmationTimeout = 15;

    /// What the pending change asks of the controller.
    class Host {
    public:
        virtual ~Host() = default;
        /// Puts the display back into a mode it offers; failures are reported.
        virtual void restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& display) = 0;
        /// A change was opened: no other display's switch offer stays open.
        virtual void changeOpened() = 0;
        virtual void changed() = 0;
        virtual void report(const SplitError& error) = 0;
    };

    PendingChange(OwnedTimers& timers, MonitorRecords& monitors, DisplayWriter& writer,
                  Settling& settling, Host& host)
        : timers_(timers), monitors_(monitors), writer_(writer), settling_(settling), host_(host) {}
    PendingChange(const PendingChange&) = delete;
    PendingChange& operator=(const PendingChange&) = delete;
    ~PendingChange();

    /// Writes `target` to the monitor and opens the confirmation for the
    /// monitor's record; what the display reports now and `previousMode` are
    /// what a revert goes back to. Throws SplitError.
    void open(const AttachedMonitor& monitor, EDIDKit::Bytes target, std::optional<DisplayMode> previousMode);
    /// Saves the change, its override and the previous mode, into the record
    /// it was opened for, whatever the display reports now. When the monitor
    /// has gone the change closes quietly: nothing is saved.
    void keep();
    /// Undoes the change: the factory EDID now, then what the display
    /// reported before and its previous mode.
    void revert();
    /// Ends the change without touching its display (it is gone, or the
    /// application quits): nothing saved, no error.
    void closeQuietly();
    /// Quitting with a change open: the confirmed override that was on the
    /// display before goes back on, or else the factory EDID.
    void revertForQuit();
    /// The identification to tell when the change is kept or reverted.
    void reportTo(std::weak_ptr<IdentificationProgress> progress) { progress_ = std::move(progress); }
    /// Drops the settling and a revert's follow-up (a reset is under way).
    void cancelFollowUps();

    bool isOpen() const { return pending_.has_value(); }
    bool isFor(const DisplayID& display) const { return pending_ && pending_->confirmation.display == display; }
    std::optional<PendingConfirmation> confirmation() const;
    /// The override the change wrote.
    const EDIDKit::Bytes* appliedEDID() const { return pending_ ? &pending_->appliedEDID : nullptr; }

private:
    struct Pending {
        PendingConfirmation confirmation;
        /// The record the change saves into when kept, and the port its
        /// monitor was on.
        DisplayIdentity record;
        std::optional<std::string> port;
        EDIDKit::Bytes appliedEDID;
        EDIDKit::Bytes previousEDID;
        std::optional<DisplayMode> previousMode;
        ScheduledTask timeout;
    };

    void followUpRevert(const DisplayID& display, const Pending& reverted);
    /// What puts back the EDID the display showed before the change: the
    /// saved override when that was an override of ours as the port handed
    /// it back, else those very bytes.
    EDIDKit::Bytes previousToWrite(const Pending& change) const;
    /// Sets or clears the change, telling the records which display it holds.
    void setPending(std::optional<Pending> pending);
    void tellProgress(bool kept);

    OwnedTimers& timers_;
    MonitorRecords& monitors_;
    DisplayWriter& writer_;
    Settling& settling_;
    Host& host_;
    std::optional<Pending> pending_;
    std::optional<ScheduledTask> revertFollowUp_;
    std::weak_ptr<IdentificationProgress> progress_;
};

} // namespace HalvoraCore
