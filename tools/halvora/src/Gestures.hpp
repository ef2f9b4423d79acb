#pragma once

#include <HalvoraPro/IdentificationContent.hpp>
#include <HalvoraPro/IdentificationWindow.hpp>
#include <HalvoraPro/MenuBarController.hpp>
#include <HalvoraPro/MenuItem.hpp>
#include <HalvoraPro/ShellView.hpp>
#include <cstddef>

namespace Halvora {

/// A dialog's two buttons: the default one (Return) and the cancel one (Escape).
enum class DialogButton { defaultButton, cancelButton };

/// How the simulator's user acts on what is shown, once the simulator has
/// checked that the gesture makes sense (the menu is open, the item enabled,
/// the panel shown). Directly on the shell's objects in `halvora simulate`;
/// through the real views' controls in the application's self-test.
class Gestures {
public:
    virtual ~Gestures() = default;
    /// The status menu opens, showing `menu`.
    virtual void openMenu(const HalvoraPro::Menu& menu) = 0;
    /// Item `index` (from 0) of the open menu is chosen.
    virtual void chooseMenuItem(std::size_t index, const HalvoraPro::MenuItem& item) = 0;
    /// A floating panel's button is pressed.
    virtual void pressPanelButton(HalvoraPro::PanelKind panel, DialogButton button,
                                  HalvoraPro::MenuBarController& shell) = 0;
    /// Radio `index` (from 0) of the identification window is clicked.
    virtual void chooseRadio(std::size_t index, HalvoraPro::IdentificationWindow& window) = 0;
    /// The identification window's button that carries `action` is pressed.
    virtual void pressWindowButton(DialogButton button,
                                   HalvoraPro::IdentificationContent::Action action,
                                   HalvoraPro::IdentificationWindow& window) = 0;
    /// The identification window's close box is clicked.
    virtual void closeWindow(HalvoraPro::IdentificationWindow& window) = 0;
};

/// The gestures of `halvora simulate`: straight to the shell's objects.
class DirectGestures final : public Gestures {
public:
    void openMenu(const HalvoraPro::Menu&) override {}
    void chooseMenuItem(std::size_t, const HalvoraPro::MenuItem& item) override { item.handler(); }
    void pressPanelButton(HalvoraPro::PanelKind panel, DialogButton button,
                          HalvoraPro::MenuBarController& shell) override;
    void chooseRadio(std::size_t index, HalvoraPro::IdentificationWindow& window) override {
        window.select(index);
    }
    void pressWindowButton(DialogButton, HalvoraPro::IdentificationContent::Action action,
                           HalvoraPro::IdentificationWindow& window) override {
        window.press(action);
    }
    void closeWindow(HalvoraPro::IdentificationWindow& window) override { window.close(); }
};

} // namespace Halvora
