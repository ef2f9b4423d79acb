#pragma once

#include <HalvoraCore/IdentificationWizard.hpp>
#include <HalvoraPro/Focus.hpp>
#include <HalvoraPro/IdentificationContent.hpp>
#include <HalvoraPro/ShellView.hpp>
#include <functional>
#include <memory>
#include <string>

namespace HalvoraPro {

/// The window in which the user works through the identification wizard for
/// one display. It renders the wizard's current step and forwards the user's
/// answers; every decision is the wizard's.
class IdentificationWindow : public std::enable_shared_from_this<IdentificationWindow> {
public:
    /// Builds the window and follows the wizard: every change of step renders
    /// again, and reaching `confirming` calls `onAwaitingConfirmation`.
    static std::shared_ptr<IdentificationWindow>
    create(std::shared_ptr<HalvoraCore::IdentificationWizard> wizard, std::string displayName,
           std::shared_ptr<ShellView> view,
           std::shared_ptr<Focus> focus = std::make_shared<Focus>());

    /// The content for a step, with `selected` the radio that is on (the
    /// wizard's first candidate at first).
    static IdentificationContent content(const HalvoraCore::IdentificationWizard::Step& step,
                                         const std::string& displayName,
                                         const std::optional<EDIDKit::Resolution>& splitResolution,
                                         std::size_t selected = 0);

    /// Renders the current step from scratch (the first radio on) and shows
    /// it: brought to the user the first time, in place after that.
    void render();
    /// The user asked for the window again: it comes forward where it stands.
    void bringForward();
    /// The confirmation panel has gone: the window takes the keyboard back.
    void takeKeyBack();
    IdentificationContent content() const;

    // What the user does.
    /// Turns radio `index` on and every other off; false when there is no such radio.
    bool select(std::size_t index);
    /// Carries out a button's action.
    void press(IdentificationContent::Action action);
    void confirm();
    void toggleDone();
    void skip();
    void recheck();
    /// Closes the window (its close box, cancel or OK): the wizard stops
    /// watching and `onClose` runs.
    void close();

    bool isOpen() const { return open_; }
    const HalvoraCore::IdentificationWizard& wizard() const { return *wizard_; }

    std::function<void()> onClose;
    /// The user confirmed a resolution (the menu turns the login item on once).
    std::function<void()> onConfirm;
    /// The wizard applied a change and waits for the confirmation panel.
    std::function<void()> onAwaitingConfirmation;

private:
    IdentificationWindow(std::shared_ptr<HalvoraCore::IdentificationWizard> wizard,
                         std::string displayName, std::shared_ptr<ShellView> view,
                         std::shared_ptr<Focus> focus);

    std::shared_ptr<HalvoraCore::IdentificationWizard> wizard_;
    std::string displayName_;
    std::shared_ptr<ShellView> view_;
    std::shared_ptr<Focus> focus_;
    std::size_t selected_ = 0;
    bool open_ = true;
};

} // namespace HalvoraPro
