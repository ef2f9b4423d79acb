#include <HalvoraCore/SwitchOffer.hpp>

namespace HalvoraCore {

SwitchOffer::~SwitchOffer() {
    OwnedTimers::cancel(promptCheck_);
    OwnedTimers::cancel(promptTimeout_);
}

bool SwitchOffer::mayOfferFor(const DisplayState& state) {
    return state.isSplitApplied &&
           (!state.behavior || *state.behavior == PBPBehavior::latchedAtPlug);
}

void SwitchOffer::interrupted() {
    if (writer_.inOwnChangeCooldown() || inWakeQuiet() || promptCheck_) return;
    promptCheck_ = timers_.after(promptDelay, [this] {
        promptCheck_.reset();
        offer();
    });
}

void SwitchOffer::sleepChanged(bool asleep) {
    screensAsleep_ = asleep;
    if (asleep)
        OwnedTimers::cancel(promptCheck_);
    else
        lastWake_ = timers_.now();
}

void SwitchOffer::offer() {
    if (host_.offersPaused() || writer_.inOwnChangeCooldown() || inWakeQuiet()) return;
    for (const DisplayState& state : host_.displayStates()) {
        const bool candidate = mayOfferFor(state) && state.current;
        if (!candidate) continue;
        if (!state.native || !state.split) return;
        const ModeChoice target =
            *state.current == ModeChoice::full ? ModeChoice::split : ModeChoice::full;
        const EDIDKit::Resolution resolution =
            target == ModeChoice::split ? *state.split : *state.native;
        OwnedTimers::cancel(promptTimeout_);
        prompt_ = SwitchPrompt{state.id, target, resolution, timers_.now() + promptTimeout};
        promptTimeout_ = timers_.after(promptTimeout, [this] { dismiss(); });
        host_.changed();
        return;
    }
}

void SwitchOffer::dismiss() {
    if (!prompt_) return;
    prompt_.reset();
    OwnedTimers::cancel(promptTimeout_);
    host_.changed();
}

void SwitchOffer::withdrawFor(const DisplayID& display) {
    if (prompt_ && prompt_->display == display) dismiss();
}

std::optional<SwitchPrompt> SwitchOffer::take() {
    std::optional<SwitchPrompt> taken = prompt_;
    dismiss();
    return taken;
}

bool SwitchOffer::inWakeQuiet() const {
    if (screensAsleep_) return true;
    return lastWake_ && timers_.now() - *lastWake_ < wakeQuiet;
}

} // namespace HalvoraCore
