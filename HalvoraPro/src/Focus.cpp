#include <HalvoraPro/Focus.hpp>

namespace HalvoraPro {

Presentation Focus::identificationShown() {
    if (identificationShown_) return Presentation::inPlace();
    identificationShown_ = true;
    if (keyWindow_ == ShellWindow::confirmationPanel) {
        // It appears, but the panel the user must answer keeps the keyboard.
        keyBeforePanel_ = ShellWindow::identification;
        return {.activatesApplication = true,
                .becomesKey = false,
                .centres = true,
                .ordersFront = true};
    }
    keyWindow_ = ShellWindow::identification;
    return {.activatesApplication = true, .becomesKey = true, .centres = true, .ordersFront = true};
}

Presentation Focus::identificationRequested() {
    if (!identificationShown_) return identificationShown();
    if (keyWindow_ == ShellWindow::confirmationPanel) return Presentation::inPlace();
    keyWindow_ = ShellWindow::identification;
    return {
        .activatesApplication = true, .becomesKey = true, .centres = false, .ordersFront = true};
}

void Focus::identificationClosed() {
    identificationShown_ = false;
    if (keyWindow_ == ShellWindow::identification) keyWindow_.reset();
    if (keyBeforePanel_ == ShellWindow::identification) keyBeforePanel_.reset();
}

Presentation Focus::panelShown(PanelKind panel) {
    if (panel == PanelKind::switchPrompt)
        return {.activatesApplication = false,
                .becomesKey = false,
                .centres = true,
                .ordersFront = true};
    if (keyWindow_ != ShellWindow::confirmationPanel) keyBeforePanel_ = keyWindow_;
    keyWindow_ = ShellWindow::confirmationPanel;
    return {
        .activatesApplication = false, .becomesKey = true, .centres = true, .ordersFront = true};
}

Presentation Focus::panelUpdated(PanelKind) {
    return Presentation::inPlace();
}

std::optional<ShellWindow> Focus::panelHidden(PanelKind panel) {
    if (panel != PanelKind::confirmation || keyWindow_ != ShellWindow::confirmationPanel)
        return std::nullopt;
    keyWindow_ = keyBeforePanel_;
    keyBeforePanel_.reset();
    return keyWindow_;
}

bool Focus::worksWhenModal(PanelKind panel) {
    return panel == PanelKind::confirmation;
}

Presentation Focus::keyReturned() {
    return {
        .activatesApplication = false, .becomesKey = true, .centres = false, .ordersFront = false};
}

std::string Focus::keyEquivalent(PanelButton button) {
    return button == PanelButton::accept ? "\r" : "\033";
}

} // namespace HalvoraPro
