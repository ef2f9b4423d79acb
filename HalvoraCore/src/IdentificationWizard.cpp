#include <HalvoraCore/IdentificationWizard.hpp>

#include <HalvoraCore/SplitController.hpp>

#include <EDIDKit/EDID.hpp>

namespace HalvoraCore {

IdentificationWizard::IdentificationWizard(DisplayID display, std::shared_ptr<DisplaySystem> system,
                                           std::weak_ptr<SplitController> controller)
    : display_(std::move(display)), system_(std::move(system)), controller_(std::move(controller)) {}

std::shared_ptr<IdentificationWizard> IdentificationWizard::create(DisplayID display,
                                                                   std::shared_ptr<DisplaySystem> system,
                                                                   std::weak_ptr<SplitController> controller) {
    return std::shared_ptr<IdentificationWizard>(
        new IdentificationWizard(std::move(display), std::move(system), std::move(controller)));
}

void IdentificationWizard::detect() {
    step_ = Step::displayUnavailable();
    for (const auto& d : system_->externalDisplays()) {
        if (d.id != display_) continue;
        try {
            if (const auto guess = EDIDKit::EDID(d.edid).nativeResolutionGuess()) step_ = Step::chooseNative(*guess);
        } catch (const EDIDKit::EDIDError&) {
            // An unreadable EDID leaves the display unavailable.
        }
        return;
    }
}

std::optional<EDIDKit::Resolution> IdentificationWizard::splitResolution() const {
    const auto controller = controller_.lock();
    if (!controller) return std::nullopt;
    for (const auto& state : controller->displayStates())
        if (state.id == display_) return state.split;
    return std::nullopt;
}

void IdentificationWizard::confirm(EDIDKit::Resolution native) {
    const auto controller = controller_.lock();
    if (controller) controller->confirmNative(native, display_);
    step_ = Step::togglePBP();
    if (controller) controller->beginObservingPBP(shared_from_this());
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

} // namespace HalvoraCore
