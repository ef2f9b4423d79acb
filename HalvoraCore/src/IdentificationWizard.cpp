#include <HalvoraCore/IdentificationWizard.hpp>

#include <EDIDKit/EDID.hpp>

namespace HalvoraCore {

IdentificationWizard::IdentificationWizard(DisplayID display, std::shared_ptr<DisplaySystem> system,
                                           std::weak_ptr<IdentificationHost> controller)
    : display_(std::move(display)), system_(std::move(system)), controller_(std::move(controller)) {}

std::shared_ptr<IdentificationWizard> IdentificationWizard::create(DisplayID display,
                                                                   std::shared_ptr<DisplaySystem> system,
                                                                   std::weak_ptr<IdentificationHost> controller) {
    return std::shared_ptr<IdentificationWizard>(
        new IdentificationWizard(std::move(display), std::move(system), std::move(controller)));
}

std::optional<ExternalDisplay> IdentificationWizard::locate() {
    const auto displays = system_->externalDisplays();
    for (const auto& d : displays)
        if (d.id == display_) return d;
    const auto controller = controller_.lock();
    if (!identity_ || !controller) return std::nullopt;
    for (const auto& d : displays) {
        if (controller->monitorKey(d.id) == identity_) {
            display_ = d.id;
            return d;
        }
    }
    return std::nullopt;
}

void IdentificationWizard::detect() {
    step_ = Step::displayUnavailable();
    const auto d = locate();
    if (!d) return;
    const auto edid = EDIDKit::EDID::tryParse(d->edid);
    if (!edid) return; // an unreadable EDID leaves the display unavailable
    if (const auto controller = controller_.lock()) identity_ = controller->monitorKey(d->id);
    if (const auto guess = edid->nativeResolutionGuess()) step_ = Step::chooseNative(*guess);
}

std::optional<EDIDKit::Resolution> IdentificationWizard::splitResolution() const {
    const auto controller = controller_.lock();
    if (!controller) return std::nullopt;
    return controller->splitResolution(display_);
}

void IdentificationWizard::confirm(EDIDKit::Resolution native) {
    locate(); // the answer belongs to the monitor, wherever it is plugged in now
    const auto controller = controller_.lock();
    if (controller) controller->confirmNative(native, display_);
    step_ = Step::togglePBP();
    if (controller) controller->beginObservingPBP(shared_from_this(), display_);
}

void IdentificationWizard::finishToggle() {
    if (const auto controller = controller_.lock()) controller->finishObservingPBP(true);
}

void IdentificationWizard::skipToggle() {
    if (const auto controller = controller_.lock()) controller->finishObservingPBP(false);
}

void IdentificationWizard::cancel() {
    if (const auto controller = controller_.lock()) controller->cancelObservation(*this);
}

void IdentificationWizard::displayUnavailable() { moveTo(Step::displayUnavailable()); }

void IdentificationWizard::judged(PBPBehavior verdict, Outcome outcome) {
    switch (outcome) {
    case Outcome::adopted: moveTo(Step::finished(verdict)); return;
    case Outcome::awaitingConfirmation: moveTo(Step::confirming(verdict)); return;
    case Outcome::notWritten:
        // The monitor needs an override that could not be written; the error
        // alert says why, and the display is as it was.
        moveTo(Step::reverted(verdict));
        return;
    }
}

void IdentificationWizard::confirmationEnded(bool kept) {
    if (step_.kind != Step::Kind::confirming) return;
    Step next = step_;
    next.kind = kept ? Step::Kind::finished : Step::Kind::reverted; // the observed behaviour travels on
    moveTo(next);
}

void IdentificationWizard::moveTo(Step step) {
    step_ = std::move(step);
    if (onChange) onChange();
}

} // namespace HalvoraCore
