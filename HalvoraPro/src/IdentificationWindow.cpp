#include <HalvoraPro/IdentificationWindow.hpp>

namespace HalvoraPro {

using HalvoraCore::IdentificationWizard;
using Kind = IdentificationWizard::Step::Kind;
using Action = IdentificationContent::Action;

namespace {

std::string_view hintKey(EDIDKit::NativeResolutionGuess::Kind kind) {
    switch (kind) {
    case EDIDKit::NativeResolutionGuess::Kind::full:
        return "identify.hint.full";
    case EDIDKit::NativeResolutionGuess::Kind::split:
        return "identify.hint.split";
    case EDIDKit::NativeResolutionGuess::Kind::uncertain:
        break;
    }
    return "identify.hint.uncertain";
}

IdentificationContent::Button button(const char* key, Action action) {
    return {Text::localized(key), action};
}

} // namespace

std::shared_ptr<IdentificationWindow>
IdentificationWindow::create(std::shared_ptr<IdentificationWizard> wizard, std::string displayName,
                             std::shared_ptr<ShellView> view, std::shared_ptr<Focus> focus) {
    auto window = std::shared_ptr<IdentificationWindow>(new IdentificationWindow(
        std::move(wizard), std::move(displayName), std::move(view), std::move(focus)));
    window->wizard_->onChange = [weak = std::weak_ptr<IdentificationWindow>(window)] {
        const auto self = weak.lock();
        if (!self || !self->open_) return;
        self->render();
        if (self->wizard_->step().kind == Kind::confirming && self->onAwaitingConfirmation)
            self->onAwaitingConfirmation();
    };
    return window;
}

IdentificationWindow::IdentificationWindow(std::shared_ptr<IdentificationWizard> wizard,
                                           std::string displayName, std::shared_ptr<ShellView> view,
                                           std::shared_ptr<Focus> focus)
    : wizard_(std::move(wizard)), displayName_(std::move(displayName)), view_(std::move(view)),
      focus_(std::move(focus)) {}

IdentificationContent IdentificationWindow::content(
    const IdentificationWizard::Step& step, const std::string& displayName,
    const std::optional<EDIDKit::Resolution>& splitResolution, std::size_t selected) {
    IdentificationContent c;
    c.windowTitle = Text::localized("identify.windowTitle");
    c.heading = Text::localized("identify.heading", {displayName});
    c.primary = button("identify.ok", Action::close);
    switch (step.kind) {
    case Kind::chooseNative: {
        const auto& guess = *step.guess;
        c.rows = {Text::localized(std::string(hintKey(guess.kind))),
                  Text::localized("identify.question")};
        for (const auto& candidate : guess.candidates)
            c.radios.push_back({Text::literal(candidate.description()), candidate, false});
        c.radios.push_back({Text::localized("identify.noneOfThese"), std::nullopt, false});
        c.radios[selected < c.radios.size() ? selected : 0].on = true;
        c.primary = button("identify.confirm", Action::confirm);
        c.secondary = button("identify.cancel", Action::close);
        break;
    }
    case Kind::confirming:
        c.rows = {Text::localized("identify.confirming")};
        break;
    case Kind::finished:
        c.rows = {
            Text::localized("identify.result." + std::string(HalvoraCore::rawValue(*step.behavior)),
                            {splitResolution ? splitResolution->description() : std::string()})};
        break;
    case Kind::reverted:
        c.rows = {Text::localized("identify.reverted")};
        break;
    case Kind::replugGuidance:
        c.rows = {Text::localized("identify.replug")};
        c.primary = button("identify.recheck", Action::recheck);
        c.secondary = button("identify.cancel", Action::close);
        break;
    case Kind::displayUnavailable:
        c.rows = {Text::localized("identify.unavailable")};
        c.primary = button("identify.recheck", Action::recheck);
        c.secondary = button("identify.cancel", Action::close);
        break;
    case Kind::togglePBP:
        c.rows = {Text::localized("identify.togglePBP"), Text::localized("identify.watching")};
        c.primary = button("identify.toggleDone", Action::toggleDone);
        c.secondary = button("identify.skip", Action::skip);
        break;
    }
    return c;
}

IdentificationContent IdentificationWindow::content() const {
    return content(wizard_->step(), displayName_, wizard_->splitResolution(), selected_);
}

void IdentificationWindow::render() {
    selected_ = 0;
    view_->showIdentification(content(), focus_->identificationShown());
}

void IdentificationWindow::bringForward() {
    if (!open_) return;
    view_->showIdentification(content(), focus_->identificationRequested());
}

void IdentificationWindow::takeKeyBack() {
    if (!open_) return;
    view_->showIdentification(content(), Focus::keyReturned());
}

bool IdentificationWindow::select(std::size_t index) {
    if (index >= content().radios.size()) return false;
    selected_ = index;
    // A click on a radio changes the window where it stands.
    view_->showIdentification(content(), focus_->identificationShown());
    return true;
}

void IdentificationWindow::press(Action action) {
    switch (action) {
    case Action::confirm:
        confirm();
        break;
    case Action::close:
        close();
        break;
    case Action::recheck:
        recheck();
        break;
    case Action::toggleDone:
        toggleDone();
        break;
    case Action::skip:
        skip();
        break;
    }
}

void IdentificationWindow::confirm() {
    const auto shown = content();
    if (wizard_->step().kind != Kind::chooseNative || selected_ >= shown.radios.size()) return;
    // Keep the window alive through callbacks that may close it.
    const auto self = shared_from_this();
    if (const auto choice = shown.radios[selected_].choice) {
        wizard_->confirm(*choice);
        if (onConfirm) onConfirm();
    } else {
        wizard_->noneOfThese();
    }
    if (open_) render();
}

void IdentificationWindow::toggleDone() {
    const auto self = shared_from_this();
    wizard_->finishToggle();
    if (open_) render();
}

void IdentificationWindow::skip() {
    const auto self = shared_from_this();
    wizard_->skipToggle();
    if (open_) render();
}

void IdentificationWindow::recheck() {
    wizard_->recheck();
    render();
}

void IdentificationWindow::close() {
    if (!open_) return;
    open_ = false;
    const auto self = shared_from_this();
    focus_->identificationClosed();
    view_->closeIdentification();
    wizard_->cancel();
    if (onClose) onClose();
}

} // namespace HalvoraPro
