#include <HalvoraCore/SplitController.hpp>

#include <EDIDKit/EDIDComparison.hpp>

#include <algorithm>

namespace HalvoraCore {

using EDIDKit::Bytes;
using EDIDKit::EDID;
using EDIDKit::Resolution;
using EDIDKit::sameApartFromIdentity;

namespace {

std::optional<EDID> parsed(const Bytes& bytes) {
    try {
        return EDID(bytes);
    } catch (const EDIDKit::EDIDError&) {
        return std::nullopt;
    }
}

} // namespace

// MARK: - Construction

SplitController::SplitController(std::shared_ptr<DisplaySystem> system, std::shared_ptr<Scheduler> scheduler,
                                 std::shared_ptr<SettingsStore> store, std::shared_ptr<ConflictProbe> conflicts,
                                 Start start)
    : system_(std::move(system)), scheduler_(std::move(scheduler)), store_(std::move(store)),
      conflictProbe_(std::move(conflicts)), safeStart_(start == Start::safe) {
    settings_ = store_->load();
}

SplitController::~SplitController() {
    // Nothing may fire for a controller that is gone; the weak references in
    // the tasks already see to that, and cancelling frees the scheduler early.
    for (auto* slot : {&settleAfterApply_, &revertFollowUp_, &restoreCheck_, &promptCheck_, &promptTimeoutTask_})
        cancel(*slot);
    if (pending_) pending_->timeout.cancel();
    if (observation_) observation_->cancelTasks();
}

std::shared_ptr<SplitController> SplitController::create(std::shared_ptr<DisplaySystem> system,
                                                          std::shared_ptr<Scheduler> scheduler,
                                                          std::shared_ptr<SettingsStore> store,
                                                          std::shared_ptr<ConflictProbe> conflicts, Start start) {
    std::shared_ptr<SplitController> controller(new SplitController(
        std::move(system), std::move(scheduler), std::move(store), std::move(conflicts), start));
    controller->refreshConflicts();
    const std::weak_ptr<SplitController> weak = controller;
    controller->system_->observeConfigurationChanges([weak](bool isHotplug) {
        if (const auto c = weak.lock()) c->configurationChanged(isHotplug);
    });
    controller->system_->observeDisplayInterrupts([weak] {
        if (const auto c = weak.lock()) c->displayInterrupted();
    });
    controller->system_->observeSleep([weak](bool asleep) {
        if (const auto c = weak.lock()) c->sleepChanged(asleep);
    });
    // Launch is handled like a plug-in of every attached display.
    controller->configurationChanged(true);
    return controller;
}

// MARK: - Timers and callbacks

ScheduledTask SplitController::later(double after, std::function<void(SplitController&)> action) {
    const std::weak_ptr<SplitController> weak = weak_from_this();
    return scheduler_->schedule(after, [weak, action = std::move(action)] {
        if (const auto c = weak.lock()) action(*c);
    });
}

void SplitController::cancel(std::optional<ScheduledTask>& slot) {
    if (slot) slot->cancel();
    slot.reset();
}

void SplitController::restart(std::optional<ScheduledTask>& slot, double after,
                              std::function<void(SplitController&)> action) {
    cancel(slot);
    slot = later(after, std::move(action));
}

void SplitController::changed() const {
    if (onChange) onChange();
}

void SplitController::report(const SplitError& error) const {
    if (onError) onError(error);
}

// MARK: - Lookups and settings

std::optional<ExternalDisplay> SplitController::display(const DisplayID& id) {
    for (auto& d : system_->externalDisplays())
        if (d.id == id) return std::move(d);
    return std::nullopt;
}

const DisplaySettings* SplitController::recordFor(const EDID& edid) const {
    const DisplayIdentity identity = DisplayIdentity::of(edid);
    for (const auto& s : settings_)
        if (s.identity == identity) return &s;
    // An override of ours that the system handed back with another serial
    // number (or manufacturer or product code) still belongs to its monitor.
    for (const auto& s : settings_)
        if (s.overrideEDID && sameApartFromIdentity(*s.overrideEDID, edid.bytes())) return &s;
    return nullptr;
}

std::optional<DisplaySettings> SplitController::savedSettings(const EDID& edid) const {
    if (const DisplaySettings* record = recordFor(edid)) return *record;
    return std::nullopt;
}

bool SplitController::showsOverride(const Bytes& reported, const DisplaySettings& settings) {
    return settings.overrideEDID && sameApartFromIdentity(reported, *settings.overrideEDID);
}

void SplitController::updateSettings(const ExternalDisplay& d, std::optional<Resolution> creatingWith,
                                     const std::function<void(DisplaySettings&)>& change) {
    const auto edid = parsed(d.edid);
    if (!edid) return;
    const DisplaySettings* found = recordFor(*edid);
    const DisplayIdentity identity = found ? found->identity : DisplayIdentity::of(*edid);
    std::optional<DisplaySettings> record;
    if (found) record = *found;
    if (!record) {
        if (!creatingWith) return;
        record = DisplaySettings(identity, d.port, *creatingWith);
    }
    if (d.port) record->port = d.port;
    change(*record);
    std::erase_if(settings_, [&](const DisplaySettings& s) { return s.identity == identity; });
    settings_.push_back(std::move(*record));
    store_->save(settings_);
}

Bytes SplitController::splitTarget(const ExternalDisplay& d) {
    const auto edid = parsed(d.edid);
    if (!edid) throw SplitError::unreadableEDID();
    const auto settings = savedSettings(*edid);
    if (!settings) throw SplitError::notIdentified();
    if (auto merged = mergedOverride(*settings)) return std::move(*merged);
    try {
        return edid->addingSplit(layout_, settings->native).bytes();
    } catch (const EDIDKit::EDIDError& error) {
        throw SplitError::cannotAddSplit(error);
    }
}

std::optional<Bytes> SplitController::mergedOverride(const DisplaySettings& s) const {
    if (s.behavior && *s.behavior != PBPBehavior::latchedAtPlug) return std::nullopt;
    if (!s.factoryFullEDID || !s.factorySplitEDID) return std::nullopt;
    const auto full = parsed(*s.factoryFullEDID);
    const auto split = parsed(*s.factorySplitEDID);
    if (!full || !split) return std::nullopt;
    try {
        return full->mergingSplitVersion(*split).bytes();
    } catch (const EDIDKit::EDIDError&) {
        return std::nullopt;
    }
}

bool SplitController::isOwnEDID(const Bytes& bytes, const std::optional<DisplaySettings>& settings) const {
    if (pending_ && sameApartFromIdentity(pending_->appliedEDID, bytes)) return true;
    if (!settings) return false;
    if (showsOverride(bytes, *settings)) return true;
    // An EDID the monitor itself reported is never ours, even where one of our
    // rebuilds below would come out the same.
    if (settings->factoryFullEDID == bytes || settings->factorySplitEDID == bytes) return false;
    // Rebuilt from the saved factory EDIDs the way an override is built: one
    // of ours whose record was since changed (a reset, or a newer merge).
    if (mergedOverride(*settings) == bytes) return true;
    if (!settings->factoryFullEDID) return false;
    const auto full = parsed(*settings->factoryFullEDID);
    if (!full) return false;
    try {
        return full->addingSplit(layout_, settings->native).bytes() == bytes;
    } catch (const EDIDKit::EDIDError&) {
        return false;
    }
}

std::optional<bool> SplitController::factoryHasSplit(const DisplayID& id) {
    const auto d = display(id);
    if (!d) return std::nullopt;
    const auto edid = parsed(d->edid);
    if (!edid) return std::nullopt;
    const auto settings = savedSettings(*edid);
    if (!settings) return std::nullopt;
    const Resolution split = layout_.splitResolution(settings->native);
    // The EDID on the display is the monitor's own full-mode EDID when it is
    // not one this system wrote and names the saved native resolution.
    if (!isOwnEDID(d->edid, settings) && !rewriteGuard_.hasOverrideWritten(d->id) &&
        edid->nativeResolution() == settings->native)
        return edid->hasTiming(split);
    if (!settings->factoryFullEDID) return std::nullopt;
    const auto factory = parsed(*settings->factoryFullEDID);
    if (!factory) return std::nullopt;
    return factory->hasTiming(split);
}

void SplitController::captureFactoryEDID(const ExternalDisplay& d) {
    const auto edid = parsed(d.edid);
    if (!edid) return;
    const auto settings = savedSettings(*edid);
    if (!settings) return;
    // Whoever asks, an EDID this system wrote is never the monitor's own, nor
    // is what a port reports while it carries an override written in this
    // run (the system may have handed it back altered).
    if (isOwnEDID(d.edid, settings) || rewriteGuard_.hasOverrideWritten(d.id)) return;
    if (edid->nativeResolution() == settings->native) {
        if (settings->factoryFullEDID != d.edid) {
            updateSettings(d, std::nullopt, [&](DisplaySettings& s) { s.factoryFullEDID = d.edid; });
            return;
        }
    }
    // The picture-by-picture EDID is the one whose own preference is the split.
    // A superwide's full EDID may list the split size first in its base block
    // while preferring the whole panel in DisplayID: that one is not it.
    if (edid->monitorPreferredResolution() == layout_.splitResolution(settings->native) &&
        settings->factorySplitEDID != d.edid)
        updateSettings(d, std::nullopt, [&](DisplaySettings& s) { s.factorySplitEDID = d.edid; });
}

// MARK: - What the menu shows

std::vector<DisplayState> SplitController::displayStates() {
    std::vector<DisplayState> states;
    for (const auto& d : system_->externalDisplays()) {
        const auto edid = parsed(d.edid);
        if (!edid) continue;
        DisplayState state;
        state.id = d.id;
        state.name = edid->productName().value_or("");
        const auto settings = savedSettings(*edid);
        const auto mode = system_->currentMode(d.id);
        if (settings) {
            const Resolution native = settings->native;
            const Resolution split = layout_.splitResolution(native);
            state.native = native;
            state.split = split;
            state.isSplitApplied = edid->hasTiming(native) && edid->hasTiming(split);
            if (mode) {
                if (mode->resolution() == native)
                    state.current = ModeChoice::full;
                else if (mode->resolution() == split)
                    state.current = ModeChoice::split;
            }
            state.behavior = settings->behavior;
        }
        states.push_back(std::move(state));
    }
    return states;
}

std::optional<PendingConfirmation> SplitController::pendingConfirmation() const {
    if (!pending_) return std::nullopt;
    return pending_->confirmation;
}

// MARK: - Apply, keep, revert

void SplitController::applySplit(const DisplayID& id) {
    if (pending_) throw SplitError::confirmationPending();
    userActed();
    const auto d = display(id);
    if (!d) throw SplitError::displayNotFound();
    Bytes target = splitTarget(*d);
    const auto previousMode = system_->currentMode(id);
    try {
        system_->applyEDIDOverride(target, id);
    } catch (...) {
        throw SplitError::wrappingCurrentException();
    }
    rewriteGuard_.noteOverrideWritten(id);
    modeMemory_.noteApplied(now());
    lastOwnChange_ = now();
    // A revert's follow-up would put the EDID from before that revert back
    // over this new change.
    cancel(revertFollowUp_);
    dismissSwitchPrompt();
    ScheduledTask timeout = later(confirmationTimeout, [](SplitController& c) { c.revert(); });
    pending_ = Pending{{id, now() + confirmationTimeout}, std::move(target), d->edid, previousMode, timeout};
    // The write makes the system pick a mode of its own; the user's comes back
    // once the display has settled.
    restart(settleAfterApply_, settleDelay, [id, previousMode](SplitController& c) {
        c.settleAfterApply_.reset();
        c.restoreMode(previousMode, id);
    });
}

void SplitController::keep() {
    if (!pending_) return;
    Pending kept = std::move(*pending_);
    pending_.reset();
    kept.timeout.cancel();
    settleConfirmingWizard(IdentificationWizard::Step::Kind::finished);
    if (const auto d = display(kept.confirmation.display)) {
        updateSettings(*d, std::nullopt, [&](DisplaySettings& s) {
            s.overrideEDID = kept.appliedEDID;
            if (kept.previousMode) s.lastMode = kept.previousMode;
        });
    }
    changed();
}

void SplitController::revert() {
    if (!pending_) return;
    const DisplayID id = pending_->confirmation.display;
    if (!display(id)) {
        // The monitor went away: nothing is left on it to take back.
        closePendingQuietly();
        return;
    }
    Pending reverted = std::move(*pending_);
    pending_.reset();
    reverted.timeout.cancel();
    cancel(settleAfterApply_);
    settleConfirmingWizard(IdentificationWizard::Step::Kind::reverted);
    try {
        system_->restoreFactoryEDID(id);
        rewriteGuard_.noteFactoryRestored(id);
    } catch (...) {
        report(SplitError::wrappingCurrentException());
    }
    lastOwnChange_ = now();
    changed();
    restart(revertFollowUp_, settleDelay,
            [id, reverted](SplitController& c) { c.revertFollowUp(id, reverted); });
}

void SplitController::closePendingQuietly() {
    if (!pending_) return;
    pending_->timeout.cancel();
    pending_.reset();
    cancel(settleAfterApply_);
    settleConfirmingWizard(IdentificationWizard::Step::Kind::reverted);
    changed();
}

void SplitController::revertPendingForQuit() {
    if (!pending_) return;
    const Pending closing = *pending_;
    closePendingQuietly();
    const auto d = display(closing.confirmation.display);
    if (!d) return;
    const auto edid = parsed(closing.previousEDID);
    const auto settings = edid ? savedSettings(*edid) : std::nullopt;
    try {
        // A confirmed override that was on the display before goes back on;
        // anything else gives way to the monitor's own EDID.
        if (settings && settings->overrideEDID == closing.previousEDID)
            system_->applyEDIDOverride(closing.previousEDID, d->id);
        else
            system_->restoreFactoryEDID(d->id);
    } catch (...) {
        // Quitting goes on.
    }
}

void SplitController::settleConfirmingWizard(IdentificationWizard::Step::Kind outcome) {
    const auto wizard = confirmingWizard_.lock();
    confirmingWizard_.reset();
    if (!wizard || wizard->step().kind != IdentificationWizard::Step::Kind::confirming) return;
    IdentificationWizard::Step next = wizard->step();
    next.kind = outcome; // the observed behaviour travels on
    wizard->setStep(next);
    if (wizard->onChange) wizard->onChange();
}

void SplitController::revertFollowUp(const DisplayID& id, const Pending& reverted) {
    revertFollowUp_.reset();
    const auto d = display(id);
    if (d && d->edid != reverted.previousEDID) {
        // Removing the override did not bring back what was there before (an
        // override kept in an earlier run, say): put that back, then the mode.
        try {
            system_->applyEDIDOverride(reverted.previousEDID, id);
            rewriteGuard_.noteOverrideWritten(id);
        } catch (...) {
            report(SplitError::wrappingCurrentException());
        }
        lastOwnChange_ = now();
        revertFollowUp_ = later(settleDelay, [id, mode = reverted.previousMode](SplitController& c) {
            c.revertFollowUp_.reset();
            c.restoreMode(mode, id);
        });
        return;
    }
    restoreMode(reverted.previousMode, id);
}

// MARK: - Modes and the switch prompt

void SplitController::restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& id) {
    if (!mode) return;
    if (system_->currentMode(id) == *mode) return;
    const auto modes = system_->modes(id);
    if (std::find(modes.begin(), modes.end(), *mode) == modes.end()) return;
    try {
        system_->setMode(*mode, id);
        lastOwnChange_ = now();
        if (switchPrompt_ && switchPrompt_->display == id) dismissSwitchPrompt();
    } catch (...) {
        report(SplitError::wrappingCurrentException());
    }
    changed();
}

void SplitController::rememberMode(const DisplayMode& mode, const DisplayID& id) {
    if (const auto d = display(id)) updateSettings(*d, std::nullopt, [&](DisplaySettings& s) { s.lastMode = mode; });
}

void SplitController::dismissSwitchPrompt() {
    if (!switchPrompt_) return;
    switchPrompt_.reset();
    cancel(promptTimeoutTask_);
    changed();
}

// MARK: - Events

bool SplitController::inOwnChangeCooldown() const {
    return lastOwnChange_ && now() - *lastOwnChange_ < ownSwitchCooldown;
}

bool SplitController::inWakeQuiet() const {
    if (screensAsleep_) return true;
    return lastWake_ && now() - *lastWake_ < wakeQuiet;
}

void SplitController::configurationChanged(bool isHotplug) {
    if (isHotplug) modeMemory_.noteDisplayChange(now());
    restart(restoreCheck_, restoreDebounce, [](SplitController& c) {
        c.restoreCheck_.reset();
        c.restoreSavedSettings();
    });
}

void SplitController::displayInterrupted() {
    if (const auto watched = activeObservation()) {
        // While the user toggles PBP for identification, an interrupt is a
        // toggle signal and never leads to a switch offer.
        ++watched->interrupts;
        watched->noteSignal(now());
        signalObserved(*watched);
        return;
    }
    if (inOwnChangeCooldown() || inWakeQuiet() || promptCheck_) return;
    promptCheck_ = later(promptDelay, [](SplitController& c) {
        c.promptCheck_.reset();
        c.offerSwitch();
    });
}

void SplitController::sleepChanged(bool asleep) {
    screensAsleep_ = asleep;
    if (asleep)
        cancel(promptCheck_);
    else
        lastWake_ = now();
}

void SplitController::restoreSavedSettings() {
    // A change whose monitor was unplugged has nothing left to confirm.
    if (pending_ && !display(pending_->confirmation.display)) closePendingQuietly();
    refreshConflicts();
    // Started safely: nothing is written until the user picks an action.
    if (safeStart_) return;
    if (!conflicts_.empty()) return; // nothing is restored while another EDID tool is active
    if (clearAfterConflict_) {
        clearAfterConflict_ = false;
        if (clearOtherToolsEDID()) {
            // Run again on the clean ports, after the displays settle.
            configurationChanged(true);
            return;
        }
    }
    noteObservedEDID();
    const auto watched = activeObservation();
    const auto attached = system_->externalDisplays();
    // A replugged monitor comes back under a new ID, with its rewrites counted afresh.
    std::vector<DisplayID> ids;
    for (const auto& d : attached) ids.push_back(d.id);
    rewriteGuard_.keepOnly(ids);
    for (const auto& d : attached) {
        if (pending_ && pending_->confirmation.display == d.id) continue;
        if (watched && watched->display == d.id) continue;
        restoreDisplay(d);
    }
}

void SplitController::restoreDisplay(const ExternalDisplay& d) {
    const auto edid = parsed(d.edid);
    if (!edid) return;
    auto settings = savedSettings(*edid);
    if (!settings) return;
    if (!showsOverride(d.edid, *settings)) {
        // The display shows its own EDID: remember it, and refresh a saved
        // override when the factory EDIDs now merge into a different one. An
        // override is only ever created by the user keeping one.
        captureFactoryEDID(d);
        settings = savedSettings(*edid);
        if (const auto merged = mergedOverride(*settings);
            settings->overrideEDID && merged && merged != settings->overrideEDID) {
            updateSettings(d, std::nullopt, [&](DisplaySettings& s) { s.overrideEDID = merged; });
            settings = savedSettings(*edid);
        }
    }
    if (settings->behavior == PBPBehavior::switchesOnToggle) {
        const DisplayIdentity identity = settings->identity;
        const auto seen = lastSeenFactoryEDID_.find(identity);
        const bool changedByItself = seen != lastSeenFactoryEDID_.end() && seen->second != d.edid;
        lastSeenFactoryEDID_[identity] = d.edid;
        // For this kind of monitor a new EDID means the user toggled PBP.
        if (changedByItself) {
            switchToPreferred(d, *settings);
            // Following the monitor saved the mode it now runs in; the rest
            // of the pass must not put the one from before back.
            settings = savedSettings(*edid);
            if (!settings) return;
        }
    }
    if (settings->overrideEDID && !showsOverride(d.edid, *settings)) {
        // No other tool is active during a pass: what a port that carries our
        // override reports instead is the system's copy of it.
        rewriteGuard_.noteReportedInstead(d.id, d.edid);
        if (!mayRewrite(d, *edid, *settings->overrideEDID)) return;
        try {
            system_->applyEDIDOverride(*settings->overrideEDID, d.id);
        } catch (...) {
            report(SplitError::wrappingCurrentException());
            return;
        }
        rewriteGuard_.noteRewrite(d.id, *settings->overrideEDID, now());
        modeMemory_.noteApplied(now());
        lastOwnChange_ = now();
        if (switchPrompt_ && switchPrompt_->display == d.id) dismissSwitchPrompt();
        restart(settleAfterApply_, settleDelay, [id = d.id, mode = settings->lastMode](SplitController& c) {
            c.settleAfterApply_.reset();
            c.restoreMode(mode, id);
        });
        return;
    }
    if (settings->overrideEDID) rewriteGuard_.noteArrived(d.id);
    if (now() >= modeMemory_.quietUntil) {
        // Settled: the mode on the display is the user's choice.
        const auto current = system_->currentMode(d.id);
        if (current && current != settings->lastMode) rememberMode(*current, d.id);
    } else {
        restoreMode(settings->lastMode, d.id);
    }
}

bool SplitController::mayRewrite(const ExternalDisplay& d, const EDID& reported, const Bytes& override) {
    switch (rewriteGuard_.check(d.id, override, now())) {
    case RewriteGuard::Verdict::write:
        return true;
    case RewriteGuard::Verdict::stopNow:
        report(SplitError::overrideNotTaken(reported.productName().value_or("")));
        changed();
        return false;
    case RewriteGuard::Verdict::stopped:
        break;
    }
    return false;
}

void SplitController::switchToPreferred(const ExternalDisplay& d, const DisplaySettings& settings) {
    const auto edid = parsed(d.edid);
    if (!edid) return;
    const auto preferred = edid->monitorPreferredResolution();
    if (!preferred) return;
    ModeChoice target;
    if (*preferred == settings.native)
        target = ModeChoice::full;
    else if (*preferred == layout_.splitResolution(settings.native))
        target = ModeChoice::split;
    else
        return;
    const auto current = system_->currentMode(d.id);
    if (current && current->resolution() == *preferred) {
        rememberMode(*current, d.id);
        return;
    }
    try {
        switchMode(target, d.id);
    } catch (...) {
        report(SplitError::wrappingCurrentException());
    }
}

void SplitController::offerSwitch() {
    if (pending_ || activeObservation() || inOwnChangeCooldown() || inWakeQuiet()) return;
    for (const DisplayState& state : displayStates()) {
        const bool candidate = state.isSplitApplied && state.current &&
                               (!state.behavior || *state.behavior == PBPBehavior::latchedAtPlug);
        if (!candidate) continue;
        if (!state.native || !state.split) return;
        const ModeChoice target = *state.current == ModeChoice::full ? ModeChoice::split : ModeChoice::full;
        const Resolution resolution = target == ModeChoice::split ? *state.split : *state.native;
        cancel(promptTimeoutTask_);
        switchPrompt_ = SwitchPrompt{state.id, target, resolution, now() + promptTimeout};
        promptTimeoutTask_ = later(promptTimeout, [](SplitController& c) { c.dismissSwitchPrompt(); });
        changed();
        return;
    }
}

void SplitController::acceptSwitchPrompt() {
    if (!switchPrompt_) return;
    const SwitchPrompt prompt = *switchPrompt_;
    dismissSwitchPrompt();
    try {
        switchTo(prompt.target, prompt.display);
    } catch (...) {
        report(SplitError::wrappingCurrentException());
    }
}

void SplitController::switchTo(ModeChoice choice, const DisplayID& id) {
    userActed();
    switchMode(choice, id);
}

void SplitController::switchMode(ModeChoice choice, const DisplayID& id) {
    const auto states = displayStates();
    const auto state = std::find_if(states.begin(), states.end(), [&](const DisplayState& s) { return s.id == id; });
    if (state == states.end()) throw SplitError::displayNotFound();
    if (!state->native || !state->split) throw SplitError::notIdentified();
    const Resolution wanted = choice == ModeChoice::full ? *state->native : *state->split;
    const std::vector<DisplayMode> modes = system_->modes(id);
    const auto best = fastestModeIndex(modes, wanted);
    if (!best) throw SplitError::modeUnavailable(wanted);
    const DisplayMode mode = modes[*best];
    try {
        system_->setMode(mode, id);
    } catch (...) {
        throw SplitError::wrappingCurrentException();
    }
    lastOwnChange_ = now();
    if (switchPrompt_ && switchPrompt_->display == id) dismissSwitchPrompt();
    rememberMode(mode, id);
}

// MARK: - Identification and PBP observation

std::shared_ptr<IdentificationWizard> SplitController::startIdentification(const DisplayID& id) {
    userActed();
    auto wizard = IdentificationWizard::create(id, system_, weak_from_this());
    wizard->detect();
    return wizard;
}

void SplitController::confirmNative(Resolution native, const DisplayID& id) {
    const auto d = display(id);
    if (!d || !parsed(d->edid)) return;
    updateSettings(*d, native, [&](DisplaySettings& s) { s.native = native; });
    captureFactoryEDID(*d);
    changed();
}

void SplitController::endObservation() {
    if (observation_) observation_->cancelTasks();
    observation_.reset();
}

std::shared_ptr<PBPObservation> SplitController::activeObservation() {
    if (observation_ && observation_->wizard.expired()) endObservation();
    return observation_;
}

bool SplitController::isObservingPBP() { return activeObservation() != nullptr; }

void SplitController::beginObservingPBP(const std::shared_ptr<IdentificationWizard>& wizard) {
    endObservation();
    dismissSwitchPrompt();
    const auto d = display(wizard->display());
    const auto edid = d ? parsed(d->edid) : std::nullopt;
    if (!edid) {
        wizard->setStep(IdentificationWizard::Step::displayUnavailable());
        if (wizard->onChange) wizard->onChange();
        return;
    }
    const auto settings = savedSettings(*edid);
    observation_ = std::make_shared<PBPObservation>(wizard, d->id, d->edid,
                                                    settings ? settings->overrideEDID : std::nullopt);
    observation_->timeout = later(pbpObservationTimeout, [](SplitController& c) { c.finishObservingPBP(false); });
}

void SplitController::signalObserved(PBPObservation& watched) {
    if (watched.judgeTask) watched.judgeTask->cancel();
    const double delay = watched.toggles < 2 ? pbpQuietAfterSignal : settleDelay;
    watched.judgeTask = later(delay, [](SplitController& c) { c.finishObservingPBP(false); });
}

void SplitController::noteObservedEDID() {
    if (!observation_) return;
    if (observation_->wizard.expired()) {
        endObservation();
        return;
    }
    const auto d = display(observation_->display);
    if (d && observation_->noteEDID(d->edid, now())) signalObserved(*observation_);
}

void SplitController::finishObservingPBP(bool userToggled) {
    if (!observation_) return;
    const auto wizard = observation_->wizard.lock();
    if (!wizard) {
        endObservation();
        return;
    }
    noteObservedEDID(); // a last EDID change is not missed
    const std::shared_ptr<PBPObservation> watched = observation_;
    const std::optional<bool> factoryHas = factoryHasSplit(watched->display);
    PBPBehavior verdict = PBPBehavior::latchedAtPlug;
    if (watched->edidChanged)
        verdict = PBPBehavior::switchesOnToggle;
    else if (watched->interrupts == 0 && userToggled && factoryHas)
        verdict = *factoryHas ? PBPBehavior::fixedWithSplit : PBPBehavior::fixedMissingSplit;
    endObservation();
    const bool adopted = adopt(verdict, watched->display);
    if (!adopted) {
        // The monitor needs an override that could not be written; the error
        // alert says why, and the display is as it was.
        wizard->setStep(IdentificationWizard::Step::reverted(verdict));
    } else if (pending_ && pending_->confirmation.display == watched->display) {
        confirmingWizard_ = wizard;
        wizard->setStep(IdentificationWizard::Step::confirming(verdict));
    } else {
        wizard->setStep(IdentificationWizard::Step::finished(verdict));
    }
    if (wizard->onChange) wizard->onChange();
}

bool SplitController::adopt(PBPBehavior behavior, const DisplayID& id) {
    const auto d = display(id);
    if (!d) return !needsOverride(behavior); // gone: no override could be written
    updateSettings(*d, std::nullopt, [&](DisplaySettings& s) { s.behavior = behavior; });
    if (needsOverride(behavior)) {
        try {
            if (splitTarget(*d) != d->edid) applySplit(id);
        } catch (...) {
            report(SplitError::wrappingCurrentException());
            return false;
        }
        return true;
    }
    // The monitor brings its own split timing: no override is kept for it.
    const auto edid = parsed(d->edid);
    const auto settings = edid ? savedSettings(*edid) : std::nullopt;
    if (settings && settings->overrideEDID) {
        const bool showing = d->edid == *settings->overrideEDID;
        updateSettings(*d, std::nullopt, [](DisplaySettings& s) { s.overrideEDID.reset(); });
        if (showing) {
            try {
                system_->restoreFactoryEDID(id);
                rewriteGuard_.noteFactoryRestored(id);
            } catch (...) {
                report(SplitError::wrappingCurrentException());
            }
            lastOwnChange_ = now();
        }
        configurationChanged(false);
    }
    changed();
    return true;
}

void SplitController::cancelObservation(const IdentificationWizard& wizard) {
    if (!observation_ || observation_->wizard.lock().get() != &wizard) return;
    endObservation();
    configurationChanged(false);
}

// MARK: - Quit and factory reset

void SplitController::restoreForQuit() {
    // Started safely and left alone: whatever the displays show stays.
    if (safeStart_) return;
    const std::optional<Bytes> applied = pending_ ? std::optional<Bytes>(pending_->appliedEDID) : std::nullopt;
    for (const auto& d : system_->externalDisplays()) {
        const auto edid = parsed(d.edid);
        if (!edid) continue;
        const auto settings = savedSettings(*edid);
        // An override written in this run counts as ours even when the system
        // altered it beyond recognition: by what the port reported instead of
        // it, or, with no other tool about that could have written since,
        // by having been written at all.
        const bool ours = (settings && showsOverride(d.edid, *settings)) ||
                          (applied && sameApartFromIdentity(*applied, d.edid)) ||
                          rewriteGuard_.isReportedInstead(d.id, d.edid) ||
                          (conflicts_.empty() && rewriteGuard_.hasOverrideWritten(d.id));
        if (!ours) continue;
        try {
            system_->restoreFactoryEDID(d.id);
        } catch (...) {
            // Quitting goes on; the next display is handled.
        }
    }
}

void SplitController::restoreFactory() {
    if (pending_) throw SplitError::confirmationPending();
    userActed();
    cancel(settleAfterApply_);
    cancel(revertFollowUp_);
    dismissSwitchPrompt();
    std::optional<SplitError> firstFailure;
    std::vector<DisplayIdentity> failed;
    for (const auto& d : system_->externalDisplays()) {
        try {
            system_->restoreFactoryEDID(d.id);
            rewriteGuard_.noteFactoryRestored(d.id);
        } catch (...) {
            if (!firstFailure) firstFailure = SplitError::wrappingCurrentException();
            if (const auto edid = parsed(d.edid)) failed.push_back(DisplayIdentity::of(*edid));
        }
        // The interrupts the reset causes are not the user's toggles.
        lastOwnChange_ = now();
    }
    for (DisplaySettings& s : settings_) {
        if (std::find(failed.begin(), failed.end(), s.identity) != failed.end()) continue;
        s.overrideEDID.reset();
        s.lastMode.reset();
    }
    store_->save(settings_);
    lastSeenFactoryEDID_.clear();
    changed();
    if (firstFailure) throw *firstFailure;
}

// MARK: - Conflicting tools

bool SplitController::refreshConflicts() {
    ConflictSet found = conflictProbe_->detect();
    if (found == conflicts_) return false;
    if (!conflicts_.empty() && found.empty()) clearAfterConflict_ = true;
    conflicts_ = std::move(found);
    changed();
    return true;
}

void SplitController::checkConflicts() {
    if (refreshConflicts()) configurationChanged(false);
}

void SplitController::takeOver(ConflictingTool tool) {
    userActed();
    try {
        conflictProbe_->takeOver(tool);
    } catch (...) {
        throw SplitError::wrappingCurrentException();
    }
    if (refreshConflicts()) configurationChanged(false);
}

bool SplitController::clearOtherToolsEDID() {
    bool cleared = false;
    for (const auto& d : system_->externalDisplays()) {
        if (pending_ && pending_->confirmation.display == d.id) continue;
        const auto edid = parsed(d.edid);
        if (!edid) continue;
        const auto settings = savedSettings(*edid);
        if (!settings) continue;
        // An EDID this system knows for the monitor is not another tool's.
        if (d.edid == settings->overrideEDID || d.edid == settings->factoryFullEDID ||
            d.edid == settings->factorySplitEDID)
            continue;
        try {
            system_->restoreFactoryEDID(d.id);
            cleared = true;
        } catch (...) {
            report(SplitError::wrappingCurrentException());
        }
    }
    // The interrupts the clearing causes are not the user's toggles.
    if (cleared) lastOwnChange_ = now();
    return cleared;
}

// MARK: - Safe start and the user's actions

void SplitController::resumeRestoring() { userActed(); }

void SplitController::userActed() {
    // A monitor stopped for rewriting gets another chance once the user acts.
    rewriteGuard_.releaseAll();
    if (!safeStart_) return;
    safeStart_ = false;
    changed();
    configurationChanged(false); // the saved settings come back at the next pass
}

} // namespace HalvoraCore
