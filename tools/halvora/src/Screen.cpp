#include "Screen.hpp"

namespace Halvora {

std::string fileNameOf(ShownWindow window) {
    switch (window) {
    case ShownWindow::confirmationPanel:
        return "confirmation-panel";
    case ShownWindow::switchPrompt:
        return "switch-prompt";
    case ShownWindow::identificationWindow:
        return "identification-window";
    case ShownWindow::alert:
        break;
    }
    return "alert";
}

std::string descriptionOf(ShownWindow window) {
    switch (window) {
    case ShownWindow::confirmationPanel:
        return "the confirmation panel";
    case ShownWindow::switchPrompt:
        return "the switch prompt";
    case ShownWindow::identificationWindow:
        return "the identification window";
    case ShownWindow::alert:
        break;
    }
    return "an alert";
}

} // namespace Halvora
