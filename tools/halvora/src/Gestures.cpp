#include "Gestures.hpp"

#include <HalvoraPro/ConfirmationPanel.hpp>
#include <HalvoraPro/SwitchPromptPanel.hpp>

namespace Halvora {

void DirectGestures::pressPanelButton(HalvoraPro::PanelKind panel, DialogButton button,
                                      HalvoraPro::MenuBarController& shell) {
    const bool accepted = button == DialogButton::defaultButton;
    if (panel == HalvoraPro::PanelKind::confirmation) {
        if (const auto confirmation = shell.confirmationPanel())
            accepted ? confirmation->keep() : confirmation->revert();
    } else if (auto* prompt = shell.switchPromptPanel()) {
        accepted ? prompt->accept() : prompt->ignore();
    }
}

} // namespace Halvora
