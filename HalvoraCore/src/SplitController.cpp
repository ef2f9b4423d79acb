#include <HalvoraCore/OverrideRecipe.hpp>
#include <HalvoraCore/SplitController.hpp>
#include <algorithm>

namespace HalvoraCore {

using EDIDKit::Bytes;
using EDIDKit::Resolution;

// MARK: - Construction and routing

SplitController::SplitController(std::shared_ptr<DisplaySystem> system,
                                 std::shared_ptr<Scheduler> scheduler,
                                 std::shared_ptr<SettingsStore> store,
                                 std::shared_ptr<ConflictProbe> conflicts, Start start)
    : system_(system), timers_(std::move(scheduler)), writer_(system, guard_, timers_),
      settling_(timers_, writer_, modeMemory_, *this), monitors_(system, std::move(store), layout_),
      conflicts_(std::move(conflicts)), offer_(timers_, writer_, *this),
      pending_(timers_, monitors_, writer_, settling_, *this),
      observer_(timers_, monitors_, pending_, *this),
      capture_(monitors_, pending_, guard_, layout_), factory_(monitors_, writer_, guard_),
      restore_(
          {timers_, monitors_, pending_, settling_, writer_, guard_, modeMemory_, layout_, *this}),
      modeSwitch_(*this), adoption_(monitors_, writer_, *this), safeStart_(start == Start::safe) {
    // Whatever the controller changes on a display ends the offer to switch it.
    writer_.onOwnChange = [this](const DisplayID& display) { offer_.withdrawFor(display); };
}

SplitController::~SplitController() {
    OwnedTimers::cancel(restoreCheck_);
}

std::shared_ptr<SplitController> SplitController::create(std::shared_ptr<DisplaySystem> system,
                                                         std::shared_ptr<Scheduler> scheduler,
                                                         std::shared_ptr<SettingsStore> store,
                                                         std::shared_ptr<ConflictProbe> conflicts,
                                                         Start start) {
    std::shared_ptr<SplitController> controller(new SplitController(
        std::move(system), std::move(scheduler), std::move(store), std::move(conflicts), start));
    controller->timers_.tieTo(controller);
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
    controller->watchInterruptsAsNeeded();
    return controller;
}

void SplitController::changed() {
    watchInterruptsAsNeeded();
    if (onChange) onChange();
}

bool SplitController::wantsInterrupts() {
    if (observer_.active()) return true;
    // What a display offers does not depend on its mode: no mode is read.
    const auto attached = monitors_.displays();
    return std::any_of(attached.begin(), attached.end(), [this](const ExternalDisplay& d) {
        const auto m = monitors_.view(d);
        return m && SwitchOffer::mayOfferFor(displayStateOf(*m, std::nullopt, layout_));
    });
}

void SplitController::watchInterruptsAsNeeded() {
    const bool wanted = wantsInterrupts();
    if (interruptsWatched_ == wanted) return;
    interruptsWatched_ = wanted;
    system_->watchInterrupts(wanted);
}

void SplitController::report(const SplitError& error) {
    if (onError) onError(error);
}

void SplitController::configurationChanged(bool isHotplug) {
    if (isHotplug) modeMemory_.noteDisplayChange(timers_.now());
    timers_.restart(restoreCheck_, restoreDebounce, [this] {
        restoreCheck_.reset();
        restoreSavedSettings();
        // Displays came or went, or what they show changed.
        watchInterruptsAsNeeded();
    });
}

void SplitController::displayInterrupted() {
    // While the user toggles PBP for identification, an interrupt is a toggle
    // signal and never leads to a switch offer.
    if (observer_.active()) {
        observer_.interrupted();
        return;
    }
    offer_.interrupted();
}

void SplitController::restoreSavedSettings() {
    // A change whose monitor was unplugged has nothing left to confirm.
    if (const auto open = pending_.confirmation(); open && !monitors_.display(open->display))
        pending_.closeQuietly();
    refreshConflicts();
    // Started safely: nothing is written until the user picks an action.
    if (safeStart_) return;
    if (!conflicts_.conflicts().empty())
        return; // nothing is restored while another EDID tool is active
    if (conflicts_.takeClearingDue() && restore_.clearOtherTools()) {
        // Run again on the clean ports, after the displays settle.
        configurationChanged(true);
        return;
    }
    observer_.noteReportedEDID();
    const auto watched = observer_.active();
    const auto attached = monitors_.displays();
    // A replugged monitor comes back under a new ID, with its rewrites counted afresh.
    std::vector<DisplayID> ids;
    for (const auto& d : attached)
        ids.push_back(d.id);
    guard_.keepOnly(ids);
    for (const auto& d : attached) {
        if (pending_.isFor(d.id)) continue;
        if (watched && watched->display == d.id) continue;
        if (const auto monitor = monitors_.view(d)) restore_.restore(*monitor);
    }
}

// MARK: - What the menu shows

std::vector<DisplayState> SplitController::displayStates() {
    std::vector<DisplayState> states;
    for (const auto& d : monitors_.displays())
        if (const auto m = monitors_.view(d))
            states.push_back(displayStateOf(*m, system_->currentMode(d.id), layout_));
    return states;
}

std::optional<Resolution> SplitController::splitResolution(const DisplayID& display) {
    for (const auto& state : displayStates())
        if (state.id == display) return state.split;
    return std::nullopt;
}

// MARK: - Settings and modes

Bytes SplitController::splitTarget(const ExternalDisplay& d) {
    const auto m = monitors_.view(d);
    if (!m) throw SplitError::unreadableEDID();
    return HalvoraCore::splitTarget(*m, layout_);
}

void SplitController::restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& id) {
    try {
        if (!writer_.putBackMode(mode, id)) return;
    } catch (const SplitError& error) {
        report(error);
    }
    changed();
}

// MARK: - The user's actions

void SplitController::userActed() {
    // A monitor stopped for rewriting gets another chance once the user acts.
    guard_.releaseAll();
    if (!safeStart_) return;
    safeStart_ = false;
    changed();
    configurationChanged(false); // the saved settings come back at the next pass
}

void SplitController::applySplit(const DisplayID& id) {
    if (pending_.isOpen()) throw SplitError::confirmationPending();
    userActed();
    const auto d = monitors_.display(id);
    if (!d) throw SplitError::displayNotFound();
    Bytes target = splitTarget(*d);
    // splitTarget read the EDID and found the record: the change belongs to it.
    const auto m = monitors_.view(*d);
    if (!m) throw SplitError::unreadableEDID();
    pending_.open(*m, std::move(target), system_->currentMode(id));
}

void SplitController::acceptSwitchPrompt() {
    const auto prompt = offer_.take();
    if (!prompt) return;
    try {
        switchTo(prompt->target, prompt->display);
    } catch (const SplitError& error) {
        report(error);
    }
}

void SplitController::switchTo(ModeChoice choice, const DisplayID& id) {
    userActed();
    switchMode(choice, id);
}

void SplitController::restoreForQuit() {
    // Started safely and left alone: whatever the displays show stays.
    if (safeStart_) return;
    factory_.atQuit(pending_.appliedEDID(), !conflicts_.conflicts().empty());
}

void SplitController::restoreFactory() {
    if (pending_.isOpen()) throw SplitError::confirmationPending();
    userActed();
    pending_.cancelFollowUps();
    offer_.dismiss();
    const auto failure = factory_.resetAll();
    restore_.forgetSeenEDIDs();
    changed();
    if (failure) throw *failure;
}

// MARK: - Identification and PBP observation

std::shared_ptr<IdentificationWizard> SplitController::startIdentification(const DisplayID& id) {
    userActed();
    auto wizard = IdentificationWizard::create(id, system_, weak_from_this());
    wizard->detect();
    return wizard;
}

void SplitController::confirmNative(Resolution native, const DisplayID& id) {
    const auto m = monitors_.monitor(id);
    if (!m) return;
    monitors_.update(*m, native, [&](DisplaySettings& s) { s.native = native; });
    if (const auto identified = monitors_.view(m->display)) capture_.capture(*identified);
    changed();
}

void SplitController::beginObservingPBP(const std::shared_ptr<IdentificationProgress>& progress,
                                        const DisplayID& id) {
    observer_.end();
    offer_.dismiss();
    const auto m = monitors_.monitor(id);
    if (!m) {
        progress->displayUnavailable();
        return;
    }
    // The override of ours on the display, however the port handed it back,
    // or else the one saved for the monitor.
    auto ours = m->ourEDID ? m->ourEDID : m->settings ? m->settings->overrideEDID : std::nullopt;
    observer_.begin(progress, m->id(), m->reported(), std::move(ours));
    watchInterruptsAsNeeded();
}

void SplitController::cancelObservation(const IdentificationProgress& progress) {
    if (!observer_.isReportingTo(progress)) return;
    observer_.end();
    watchInterruptsAsNeeded();
    configurationChanged(false);
}

// MARK: - Conflicting tools

bool SplitController::refreshConflicts() {
    if (!conflicts_.refresh()) return false;
    changed();
    return true;
}

void SplitController::checkConflicts() {
    if (refreshConflicts()) configurationChanged(false);
}

void SplitController::takeOver(ConflictingTool tool) {
    userActed();
    conflicts_.takeOver(tool);
    if (refreshConflicts()) configurationChanged(false);
}

} // namespace HalvoraCore
