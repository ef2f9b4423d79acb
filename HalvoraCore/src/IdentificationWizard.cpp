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

namespace {

std::optional<EDIDKit::EDID> parsed(const EDIDKit::Bytes& bytes) {
    try {
        return EDIDKit::EDID(bytes);
    } catch (const EDIDKit::EDIDError&) {
        return std::nullopt;
    }
}

} // namespace

std::optional<ExternalDisplay> IdentificationWizard::locate() {
    const auto displays = system_->externalDisplays();
    for (const auto& d : displays)
        if (d.id == display_) return d;
    if (!identity_) return std::nullopt;
    for (const auto& d : displays) {
        const auto edid = parsed(d.edid);
        if (edid && DisplayIdentity::of(*edid) == *identity_) {
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
    const auto edid = parsed(d->edid);
    if (!edid) return; // an unreadable EDID leaves the display unavailable
    identity_ = DisplayIdentity::of(*edid);
    if (const auto guess = edid->nativeResolutionGuess()) step_ = Step::chooseNative(*guess);
}

std::optional<EDIDKit::Resolution> IdentificationWizard::splitResolution() const {
    const auto controller = controller_.lock();
    if (!controller) return std::nullopt;
    for (const auto& state : controller->displayStates())
        if (state.id == display_) return state.split;
    return std::nullopt;
}

void IdentificationWizard::confirm(EDIDKit::Resolution native) {
    locate(); // the answer belongs to the monitor, wherever it is plugged in now
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
