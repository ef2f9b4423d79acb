#pragma once

#include <HalvoraCore/BehaviorAdoption.hpp>
#include <HalvoraCore/ConflictWatch.hpp>
#include <HalvoraCore/DisplayState.hpp>
#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/FactoryCapture.hpp>
#include <HalvoraCore/FactoryRestore.hpp>
#include <HalvoraCore/IdentificationHost.hpp>
#include <HalvoraCore/IdentificationWizard.hpp>
#include <HalvoraCore/ModeMemory.hpp>
#include <HalvoraCore/ModeSwitch.hpp>
#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/OwnedTimers.hpp>
#include <HalvoraCore/PBPObserver.hpp>
#include <HalvoraCore/PendingChange.hpp>
#include <HalvoraCore/RestorePass.hpp>
#include <HalvoraCore/RewriteGuard.hpp>
#include <HalvoraCore/Settling.hpp>
#include <HalvoraCore/SwitchOffer.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace HalvoraCore {

/// The heart of the application: routes the user's actions and the display
/// system's events to the policies that decide them (the pending change, the
/// restore pass, the switch offer, the PBP observation), over the saved
/// records and one display writer. One per application; owned by a
/// shared_ptr, and every timer and platform callback holds it weakly, so a
/// released controller's pending work does nothing.
class SplitController final : public std::enable_shared_from_this<SplitController>,
                              public IdentificationHost,
                              private BehaviorAdoption::Host,
                              private ModeSwitch::Host,
                              private PendingChange::Host,
                              private PBPObserver::Host,
                              private RestorePass::Host,
                              private Settling::Host,
                              private SwitchOffer::Host {
public:
    // Time constants, in seconds.
    static constexpr double confirmationTimeout = PendingChange::confirmationTimeout;
    static constexpr double settleDelay = Settling::settleDelay;
    static constexpr double ownSwitchCooldown = DisplayWriter::ownChangeCooldown;
    static constexpr double wakeQuiet = SwitchOffer::wakeQuiet;
    static constexpr double pbpObservationTimeout = PBPObserver::observationTimeout;
    static constexpr double pbpQuietAfterSignal = PBPObserver::quietAfterSignal;
    static constexpr double promptDelay = SwitchOffer::promptDelay;
    static constexpr double promptTimeout = SwitchOffer::promptTimeout;
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
    ~SplitController() override;

    /// Something the menu shows has changed.
    std::function<void()> onChange;
    /// A step that ran later, on a timer, failed.
    std::function<void(const SplitError&)> onError;

    // What the shell reads.
    std::vector<DisplayState> displayStates() override;
    std::optional<PendingConfirmation> pendingConfirmation() const {
        return pending_.confirmation();
    }
    const std::optional<SwitchPrompt>& switchPrompt() const { return offer_.prompt(); }
    const ConflictSet& conflicts() const { return conflicts_.conflicts(); }
    /// Started safely, and the user has not acted since.
    bool isSafeStart() const { return safeStart_; }
    /// Whether the restore pass stopped writing this display's override.
    bool isRewriteStopped(const DisplayID& display) const { return guard_.isStopped(display); }
    /// Whether an identification watches a display while the user toggles PBP.
    bool isObservingPBP() { return observer_.active() != nullptr; }

    // What the user does. Those that throw, throw SplitError.
    /// Writes the split override and opens the confirmation.
    void applySplit(const DisplayID& display) override;
    void keep() { pending_.keep(); }
    void revert() { pending_.revert(); }
    /// Ends a safe start: the saved settings come back at the next pass.
    void resumeRestoring() { userActed(); }
    void dismissSwitchPrompt() { offer_.dismiss(); }
    /// Accepts the open switch offer: switches the display it names.
    void acceptSwitchPrompt();
    /// Switches a display into its full or split mode, at the highest refresh
    /// rate it offers for that size.
    void switchTo(ModeChoice choice, const DisplayID& display);
    /// Gives every display that shows an EDID this system wrote its factory
    /// EDID back; settings stay saved so that the next launch restores them.
    void restoreForQuit();
    /// Quitting while keeping the confirmed overrides: an unconfirmed change
    /// is still taken back, and no error is shown.
    void revertPendingForQuit() { pending_.revertForQuit(); }
    /// The user's reset: factory EDIDs on every display, and the saved
    /// overrides and modes forgotten. Throws the first failure, after all
    /// displays were handled.
    void restoreFactory();
    /// A wizard for the display, looking at it already (`detect()`).
    std::shared_ptr<IdentificationWizard> startIdentification(const DisplayID& display);
    /// Probes again and, on a change, asks for a restore pass.
    void checkConflicts();
    /// Stops a conflicting tool (the shell offers it only where canTakeOver).
    void takeOver(ConflictingTool tool);

private:
    SplitController(std::shared_ptr<DisplaySystem> system, std::shared_ptr<Scheduler> scheduler,
                    std::shared_ptr<SettingsStore> store, std::shared_ptr<ConflictProbe> conflicts,
                    Start start);

    // Events of the display system.
    void configurationChanged(bool isHotplug);
    void displayInterrupted();
    void sleepChanged(bool asleep) { offer_.sleepChanged(asleep); }
    /// Whether a port interrupt could be acted on now: while PBP is observed
    /// (it is a toggle signal), or while an attached display could be offered
    /// a switch (SwitchOffer::mayOfferFor). The display system watches for
    /// interrupts only then.
    bool wantsInterrupts();
    /// Tells the display system whether to watch for interrupts, when that changed.
    void watchInterruptsAsNeeded();
    /// The restore pass: puts every display back into its saved state.
    void restoreSavedSettings();
    /// Probes again; true when the set of conflicting tools changed.
    bool refreshConflicts();
    /// The user picked an action: a safe start ends, and stopped rewrites may go on.
    void userActed();

    // What the identification asks.
    std::optional<DisplayIdentity> monitorKey(const DisplayID& id) override {
        const auto m = monitors_.monitor(id);
        return m ? std::optional(m->key) : std::nullopt;
    }
    std::optional<EDIDKit::Resolution> splitResolution(const DisplayID& display) override;
    void confirmNative(EDIDKit::Resolution native, const DisplayID& display) override;
    void beginObservingPBP(const std::shared_ptr<IdentificationProgress>& progress,
                           const DisplayID& display) override;
    void finishObservingPBP(bool userToggled) override { observer_.finish(userToggled); }
    void cancelObservation(const IdentificationProgress& progress) override;

    // What the policies ask of the controller.
    /// The override that gives the display its split timing.
    EDIDKit::Bytes splitTarget(const ExternalDisplay& display) override;
    /// Whether the monitor's own EDID already carries the split timing;
    /// nothing when that cannot be told.
    std::optional<bool> factoryHasSplit(const DisplayID& id) override {
        const auto m = monitors_.monitor(id);
        return m ? capture_.factoryHasSplit(*m) : std::nullopt;
    }
    bool adopt(PBPBehavior behavior, const DisplayID& display) override {
        return adoption_.adopt(behavior, display);
    }
    void captureFactoryEDID(const AttachedMonitor& monitor) override { capture_.capture(monitor); }
    void restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& display) override;
    void rememberMode(const DisplayMode& mode, const DisplayID& display) override {
        monitors_.rememberMode(mode, display);
    }
    void changeOpened() override { offer_.dismiss(); }
    void switchMode(ModeChoice choice, const DisplayID& display) override {
        modeSwitch_.switchTo(choice, display);
    }
    std::optional<DisplayMode> currentMode(const DisplayID& display) override {
        return system_->currentMode(display);
    }
    std::vector<DisplayMode> modes(const DisplayID& display) override {
        return system_->modes(display);
    }
    void setMode(const DisplayMode& mode, const DisplayID& display) override {
        writer_.setMode(mode, display);
    }
    bool offersPaused() override { return pending_.isOpen() || observer_.active() != nullptr; }
    void restoreSoon() override { configurationChanged(false); }
    void changed() override;
    void report(const SplitError& error) override;

    std::shared_ptr<DisplaySystem> system_;
    EDIDKit::SplitLayout layout_ = EDIDKit::SplitLayout::halves;
    OwnedTimers timers_;
    RewriteGuard guard_;
    DisplayWriter writer_;
    ModeMemory modeMemory_;
    Settling settling_;
    MonitorRecords monitors_;
    ConflictWatch conflicts_;
    SwitchOffer offer_;
    PendingChange pending_;
    PBPObserver observer_;
    FactoryCapture capture_;
    FactoryRestore factory_;
    RestorePass restore_;
    ModeSwitch modeSwitch_;
    BehaviorAdoption adoption_;
    std::optional<ScheduledTask> restoreCheck_;
    bool safeStart_ = false;
    /// What the display system was last told about watching for interrupts.
    std::optional<bool> interruptsWatched_;
};

} // namespace HalvoraCore
