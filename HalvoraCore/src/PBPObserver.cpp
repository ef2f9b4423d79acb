#include <HalvoraCore/PBPObserver.hpp>

namespace HalvoraCore {

void PBPObserver::begin(std::weak_ptr<IdentificationProgress> progress, const DisplayID& display,
                        EDIDKit::Bytes currentEDID, std::optional<EDIDKit::Bytes> ourOverride) {
    end();
    observation_ = std::make_shared<PBPObservation>(std::move(progress), display, std::move(currentEDID),
                                                    std::move(ourOverride));
    observation_->timeout = timers_.after(observationTimeout, [this] { finish(false); });
}

std::shared_ptr<PBPObservation> PBPObserver::active() {
    if (observation_ && observation_->wizard.expired()) end();
    return observation_;
}

bool PBPObserver::isReportingTo(const IdentificationProgress& progress) const {
    return observation_ && observation_->wizard.lock().get() == &progress;
}

void PBPObserver::interrupted() {
    const auto watched = active();
    if (!watched) return;
    ++watched->interrupts;
    watched->noteSignal(timers_.now());
    signalled(*watched);
}

void PBPObserver::noteReportedEDID() {
    const auto watched = active();
    if (!watched) return;
    const auto display = monitors_.display(watched->display);
    if (!display) return;
    // Our own override, however the port hands it back, tells nothing about the monitor.
    if (const auto monitor = monitors_.view(*display); monitor && monitor->showsOurs()) return;
    if (watched->noteEDID(display->edid, timers_.now())) signalled(*watched);
}

void PBPObserver::signalled(PBPObservation& watched) {
    if (watched.judgeTask) watched.judgeTask->cancel();
    const double delay = watched.toggles < 2 ? quietAfterSignal : judgeAfterToggles;
    watched.judgeTask = timers_.after(delay, [this] { finish(false); });
}

void PBPObserver::finish(bool userToggled) {
    if (!observation_) return;
    const auto progress = observation_->wizard.lock();
    if (!progress) {
        end();
        return;
    }
    noteReportedEDID(); // a last EDID change is not missed
    const std::shared_ptr<PBPObservation> watched = observation_;
    const PBPBehavior verdict = watched->verdict(userToggled, host_.factoryHasSplit(watched->display));
    end();
    using Outcome = IdentificationProgress::Outcome;
    Outcome outcome = Outcome::adopted;
    if (!host_.adopt(verdict, watched->display)) {
        outcome = Outcome::notWritten;
    } else if (pending_.isFor(watched->display)) {
        pending_.reportTo(progress);
        outcome = Outcome::awaitingConfirmation;
    }
    progress->judged(verdict, outcome);
}

void PBPObserver::end() {
    if (observation_) observation_->cancelTasks();
    observation_.reset();
}

} // namespace HalvoraCore
