#pragma once

#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraCore/DisplayState.hpp>
#include <HalvoraCore/DisplaySystem.hpp>
#include <HalvoraCore/IdentificationWizard.hpp>
#include <HalvoraCore/PBPObservation.hpp>
#include <HalvoraCore/RewriteGuard.hpp>
#include <HalvoraCore/Scheduler.hpp>
#include <HalvoraCore/SettingsStore.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/ModeMemory.hpp>
#include <EDIDKit/SplitLayout.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace HalvoraCore {

/// The heart of the application: keeps the saved per-monitor settings, tells
/// what each attached display is doing, writes the split override EDID and
/// holds it open for the user to keep or revert, and reacts to the display
/// configuration. One per application; owned by a shared_ptr, and every timer
/// and platform callback holds it weakly, so a released controller's pending
/// work does nothing.
class SplitController : public std::enable_shared_from_this<SplitController> {
public:
    // Time constants, in seconds.
    static constexpr double confirmationTimeout = 15;
    static constexpr double settleDelay = 3;
    static constexpr double ownSwitchCooldown = 8;
    static constexpr double wakeQuiet = 15;
    static constexpr double pbpObservationTimeout = 90;
    static constexpr double pbpQuietAfterSignal = 15;
    static constexpr double promptDelay = 1;
    static constexpr double promptTimeout = 30;
    /// A burst of configuration changes is answered by one restore pass this
    /// long after the last of them.
    static constexpr double restoreDebounce = 3;

    /// How the application was started. A safe start (the Option key held at
    /// launch) restores nothing, and gives nothing back at quit, until the
    /// user picks an action: the way out of an override that leaves a screen
    /// black on every launch.
    enum class Start { normal, safe };

    /// Builds the controller, loads the settings, probes for conflicting
    /// tools, registers for configuration changes, port interrupts and sleep,
    /// and handles launch like a plug-in of every attached display.
    static std::shared_ptr<SplitController> create(std::shared_ptr<DisplaySystem> system,
                                                   std::shared_ptr<Scheduler> scheduler,
                                                   std::shared_ptr<SettingsStore> store,
                                                   std::shared_ptr<ConflictProbe> conflicts,
                                                   Start start = Start::normal);

    SplitController(const SplitController&) = delete;
    SplitController& operator=(const SplitController&) = delete;
    ~SplitController();

    /// Something the menu shows has changed.
    std::function<void()> onChange;
    /// A step that ran later, on a timer, failed.
    std::function<void(const SplitError&)> onError;

    // What the shell reads.
    std::vector<DisplayState> displayStates();
    std::optional<PendingConfirmation> pendingConfirmation() const;
    const std::optional<SwitchPrompt>& switchPrompt() const { return switchPrompt_; }
    const ConflictSet& conflicts() const { return conflicts_; }
    const std::vector<DisplaySettings>& settings() const { return settings_; }
    const EDIDKit::SplitLayout& layout() const { return layout_; }
    /// Started safely, and the user has not acted since.
    bool isSafeStart() const { return safeStart_; }
    /// Whether the restore pass stopped writing this display's override (it
    /// kept reporting something else).
    bool isRewriteStopped(const DisplayID& display) const { return rewriteGuard_.isStopped(display); }

    // What the user does.
    /// Writes the split override to the display and opens the confirmation:
    /// the previous mode is put back after 3 s, and the change reverts by
    /// itself after 15 s unless kept. Throws SplitError.
    void applySplit(const DisplayID& display);
    /// Keeps the pending change: its override and the previous mode are saved.
    void keep();
    /// Undoes the pending change: the factory EDID now, then what the display
    /// reported before and its previous mode.
    void revert();
    /// Ends a safe start: the saved settings come back at the next pass.
    void resumeRestoring();
    /// Withdraws an open switch offer.
    void dismissSwitchPrompt();
    /// Accepts the open switch offer: switches the display it names.
    void acceptSwitchPrompt();
    /// Switches a display into its full or split mode, at the highest refresh
    /// rate it offers for that size. Throws SplitError.
    void switchTo(ModeChoice choice, const DisplayID& display);
    /// Gives every display that shows an EDID this system wrote its factory
    /// EDID back; settings stay saved so that the next launch restores them.
    void restoreForQuit();
    /// Quitting while keeping the confirmed overrides on the displays: a change
    /// the user has not confirmed is still taken back (the confirmed override
    /// that was there before goes back on, or else the factory EDID), and no
    /// error is shown.
    void revertPendingForQuit();
    /// The user's reset: factory EDIDs on every display, and the saved
    /// overrides and modes forgotten. Throws SplitError (the first failure,
    /// after all displays were handled).
    void restoreFactory();

    // Identification and picture-by-picture observation.
    /// A wizard for the display, looking at it already (`detect()`).
    std::shared_ptr<IdentificationWizard> startIdentification(const DisplayID& display);
    /// Saves the confirmed native resolution (creating the monitor's record)
    /// and captures its factory EDID.
    void confirmNative(EDIDKit::Resolution native, const DisplayID& display);
    /// Starts watching the wizard's display while the user toggles PBP.
    void beginObservingPBP(const std::shared_ptr<IdentificationWizard>& wizard);
    /// Judges the monitor's behaviour from what was seen and acts on it.
    void finishObservingPBP(bool userToggled);
    /// Whether an observation whose wizard is still alive is running.
    bool isObservingPBP();
    std::shared_ptr<PBPObservation> activeObservation();
    /// A toggle signal was seen: the verdict follows 15 s later, or 3 s once
    /// two toggles were counted.
    void signalObserved(PBPObservation& observation);
    /// Hands the observed display's current EDID to the running observation.
    void noteObservedEDID();
    /// Acts on a verdict: stores it, and writes the split override when the
    /// monitor needs one, or drops a saved one when it does not. False when
    /// the monitor needs an override that could not be built or written (the
    /// error went to `onError`).
    bool adopt(PBPBehavior behavior, const DisplayID& display);
    /// Ends the wizard's observation without a verdict, if it is the running one.
    void cancelObservation(const IdentificationWizard& wizard);

    // Events of the display system.
    void configurationChanged(bool isHotplug);
    void displayInterrupted();
    void sleepChanged(bool asleep);

    // Conflicting tools.
    /// Probes again; true when the set of conflicting tools changed.
    bool refreshConflicts();
    /// Probes again and, on a change, asks for a restore pass.
    void checkConflicts();
    /// Stops a conflicting tool (the shell offers it only where canTakeOver).
    /// Throws SplitError.
    void takeOver(ConflictingTool tool);
    /// Removes override EDIDs that another tool left on displays with saved
    /// settings; true when something was cleared.
    bool clearOtherToolsEDID();

    // Helpers shared by the controller's operations (public for the tests
    // and for the parts of the application built on them).
    std::optional<ExternalDisplay> display(const DisplayID& id);
    /// The monitor's record: by the EDID's identity, or else the record whose
    /// override this EDID is, handed back with another identity.
    std::optional<DisplaySettings> savedSettings(const EDIDKit::EDID& edid) const;
    /// Whether the reported EDID is the record's override, allowing for a
    /// system that changed only its identity or checksums.
    static bool showsOverride(const EDIDKit::Bytes& reported, const DisplaySettings& settings);
    /// The only way a settings record changes: edit it, move it to the end of
    /// the list and save the whole list. Creates the record with `creatingWith`
    /// as its native resolution when the monitor has none; without it, an
    /// unknown monitor is left alone.
    void updateSettings(const ExternalDisplay& display, std::optional<EDIDKit::Resolution> creatingWith,
                        const std::function<void(DisplaySettings&)>& change);
    /// The override that gives the display its split timing. Throws SplitError.
    EDIDKit::Bytes splitTarget(const ExternalDisplay& display);
    /// The factory full EDID merged with the factory split EDID, for monitors
    /// that latch (or are not yet observed) when both are saved.
    std::optional<EDIDKit::Bytes> mergedOverride(const DisplaySettings& settings) const;
    /// Whether the monitor's own EDID already carries the split timing;
    /// nothing when that cannot be told.
    std::optional<bool> factoryHasSplit(const DisplayID& id);
    /// Remembers the monitor's own EDID for the mode it is in (full or split).
    /// An EDID this system wrote is never taken for the monitor's own.
    void captureFactoryEDID(const ExternalDisplay& display);
    /// Whether these bytes are an EDID this system wrote for the monitor of
    /// `settings`: the saved override, the pending change's, or one rebuilt
    /// from the saved factory EDIDs the way overrides are built.
    bool isOwnEDID(const EDIDKit::Bytes& bytes, const std::optional<DisplaySettings>& settings) const;
    /// Puts a display back into a saved mode when it offers it and is not in it.
    void restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& display);
    /// Stores the mode as the display's last mode.
    void rememberMode(const DisplayMode& mode, const DisplayID& display);
    /// Follows a monitor whose EDID changed by itself: switches to the mode
    /// its EDID now prefers, when that is the full or the split resolution.
    void switchToPreferred(const ExternalDisplay& display, const DisplaySettings& settings);
    /// Offers to switch the first display with the split applied whose
    /// behaviour is unknown or latching to its other resolution.
    void offerSwitch();
    /// The restore pass: puts every display back into its saved state.
    void restoreSavedSettings();

    // Time spans during which a port interrupt is not taken as the user's.
    bool inOwnChangeCooldown() const;
    bool inWakeQuiet() const;

    /// When the controller last changed a display itself.
    std::optional<double> lastOwnChange() const { return lastOwnChange_; }
    const EDIDKit::ModeMemory& modeMemory() const { return modeMemory_; }

private:
    struct Pending {
        PendingConfirmation confirmation;
        EDIDKit::Bytes appliedEDID;
        EDIDKit::Bytes previousEDID;
        std::optional<DisplayMode> previousMode;
        ScheduledTask timeout;
    };

    SplitController(std::shared_ptr<DisplaySystem> system, std::shared_ptr<Scheduler> scheduler,
                    std::shared_ptr<SettingsStore> store, std::shared_ptr<ConflictProbe> conflicts, Start start);

    const DisplaySettings* recordFor(const EDIDKit::EDID& edid) const;
    /// Whether the restore pass may write the override again; tells the user
    /// once when the display has just run out of rewrites.
    bool mayRewrite(const ExternalDisplay& display, const EDIDKit::EDID& reported, const EDIDKit::Bytes& override);
    /// Switches the mode without counting as the user's action.
    void switchMode(ModeChoice choice, const DisplayID& display);
    /// The user picked an action: a safe start ends, and stopped rewrites may go on.
    void userActed();

    /// Schedules `action` on this controller, run only while it is alive.
    ScheduledTask later(double after, std::function<void(SplitController&)> action);
    /// Replaces a single-slot timer: cancels the old task, stores the new one.
    void restart(std::optional<ScheduledTask>& slot, double after, std::function<void(SplitController&)> action);
    static void cancel(std::optional<ScheduledTask>& slot);
    void changed() const;
    void report(const SplitError& error) const;
    void revertFollowUp(const DisplayID& id, const Pending& pending);
    /// Ends the pending change without touching its display (it is gone, or
    /// the application quits): nothing saved, the wizard told, no error.
    void closePendingQuietly();
    void restoreDisplay(const ExternalDisplay& display);
    /// Moves the wizard waiting for the pending change on (to finished or
    /// reverted) and forgets it.
    void settleConfirmingWizard(IdentificationWizard::Step::Kind outcome);
    void endObservation();
    double now() const { return scheduler_->now(); }

    std::shared_ptr<DisplaySystem> system_;
    std::shared_ptr<Scheduler> scheduler_;
    EDIDKit::SplitLayout layout_ = EDIDKit::SplitLayout::halves;
    std::optional<SwitchPrompt> switchPrompt_;
    ConflictSet conflicts_;
    std::optional<Pending> pending_;
    std::optional<ScheduledTask> settleAfterApply_;
    std::shared_ptr<SettingsStore> store_;
    std::shared_ptr<ConflictProbe> conflictProbe_;
    bool clearAfterConflict_ = false;
    std::optional<ScheduledTask> revertFollowUp_;
    std::vector<DisplaySettings> settings_;
    EDIDKit::ModeMemory modeMemory_;
    std::optional<ScheduledTask> restoreCheck_;
    std::optional<double> lastOwnChange_;
    bool screensAsleep_ = false;
    std::optional<double> lastWake_;
    std::optional<ScheduledTask> promptCheck_;
    std::optional<ScheduledTask> promptTimeoutTask_;
    std::shared_ptr<PBPObservation> observation_;
    std::weak_ptr<IdentificationWizard> confirmingWizard_;
    std::unordered_map<DisplayIdentity, EDIDKit::Bytes> lastSeenFactoryEDID_;
    RewriteGuard rewriteGuard_;
    bool safeStart_ = false;
};

} // namespace HalvoraCore
