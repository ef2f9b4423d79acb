#include "Gestures.hpp"

namespace Halvora {

void DirectGestures::pressPanelButton(HalvoraPro::PanelKind panel, DialogButton button,
                                      HalvoraPro::MenuBarController& shell) {
    // The same routing as the panel's keys: the default button keeps or
    // switches, the cancel button reverts or ignores.
    shell.press(panel, button == DialogButton::defaultButton ? HalvoraPro::PanelButton::accept
                                                             : HalvoraPro::PanelButton::cancel);
}

} // namespace Halvora
