#pragma once

#include <HalvoraCore/Scheduler.hpp>
#include <HalvoraCore/SplitController.hpp>
#include <HalvoraPlatform/SettingsStatus.hpp>
#include <HalvoraPro/Alert.hpp>
#include <HalvoraPro/ConfirmationPanel.hpp>
#include <HalvoraPro/Focus.hpp>
#include <HalvoraPro/IdentificationWindow.hpp>
#include <HalvoraPro/LoginItem.hpp>
#include <HalvoraPro/MenuItem.hpp>
#include <HalvoraPro/ShellView.hpp>
#include <HalvoraPro/SwitchPromptPanel.hpp>
#include <HalvoraPro/Updater.hpp>
#include <HalvoraPro/UserDefaults.hpp>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraPro {

/// The application's permanent user interface, minus the drawing: the status
/// menu, rebuilt from the controller's state each time it opens; the actions
/// behind its items and their error alerts; the confirmation and switch
/// prompt panels; the identification window; the alerts about other tools
/// that write override EDIDs; and quitting.
class MenuBarController : public std::enable_shared_from_this<MenuBarController> {
public:
    struct Parts {
        std::shared_ptr<HalvoraCore::SplitController> controller;
        std::shared_ptr<Updater> updater;
        std::shared_ptr<LoginItem> loginItem;
        std::shared_ptr<UserDefaults> defaults;
        std::shared_ptr<HalvoraCore::Scheduler> scheduler;
        std::shared_ptr<ShellView> view;
        /// The user's language: turns a text into words (the window heading
        /// names a display by a localized text when it has no name).
        std::function<std::string(const Text&)> localize;
        /// What the settings store reports about the settings file (none: nothing to tell).
        std::shared_ptr<HalvoraPlatform::SettingsStatus> settings;
    };

    /// Wires the controller's `onChange` and `onError` and the settings
    /// status, then alerts about any conflicting tool the controller already
    /// knows and any trouble with the settings file.
    static std::shared_ptr<MenuBarController> create(Parts parts);

    /// The menu as it is about to open. Asks for conflicting tools first (the
    /// answer may come later: the open menu is then updated).
    Menu buildMenu();
    /// The menu closed (an item was chosen, or the user looked away).
    void menuDidClose();
    bool isMenuOpen() const { return menuOpen_; }
    /// Quit: the factory EDIDs go back unless the user keeps the settings on
    /// quit; then the application ends.
    void quit();

    /// The identification window that is open, if any.
    std::shared_ptr<IdentificationWindow> identification() const { return identification_; }
    /// Created on first use; nothing until then.
    std::shared_ptr<ConfirmationPanel> confirmationPanel() const { return confirmation_; }
    SwitchPromptPanel* switchPromptPanel() const { return switchPrompt_.get(); }
    const HalvoraCore::ConflictSet& alertedConflicts() const { return alertedConflicts_; }
    /// Which window has the keyboard, and the rules that decide it.
    const Focus& focus() const { return *focus_; }
    /// Alerts waiting for the confirmation panel to go.
    std::size_t heldAlerts() const { return heldAlerts_.size(); }

    /// The display port calls this system lacks (read once at launch): the
    /// menu says so at its top, naming them.
    void setMissingPlatformCalls(std::vector<std::string> names) {
        missingPlatformCalls_ = std::move(names);
    }

    /// A panel's button was pressed, or its key: Return keeps or switches,
    /// Escape reverts or ignores. An error ends in the error alert.
    void press(PanelKind panel, PanelButton button);

    // What the menu's items do (public for the views and the tests).
    void identify(const HalvoraCore::DisplayID& display);
    void applySplit(const HalvoraCore::DisplayID& display);
    void show(const HalvoraCore::SplitError& error);
    void showConflict(HalvoraCore::ConflictingTool tool);
    void alertNewConflicts();
    /// The alert about the settings file's trouble, if there is one now.
    void showSettingsTrouble();

private:
    explicit MenuBarController(Parts parts);
    void controllerChanged();
    /// A trouble with the settings file is alerted once when it starts (or
    /// turns into another kind); the menu shows it while it lasts.
    void settingsChanged();
    ConfirmationPanel& confirmation();
    SwitchPromptPanel& switchPrompt();
    void presentConfirmation();
    /// The confirmation panel went: the keyboard goes back, held alerts run.
    void confirmationEnded(std::optional<ShellWindow> keyGoesTo);
    /// Runs `showAlert` now, or once the confirmation panel has gone.
    void whenAlertsMayRun(std::function<void()> showAlert);
    /// Activates the application and runs the modal alert.
    void runAlert(const Alert& alert, std::function<void(std::size_t)> response);
    /// Runs a throwing controller operation; an error ends in the error alert.
    void perform(const std::function<void()>& operation);
    /// The menu from what the controller knows now, without asking again.
    Menu composeMenu();
    void appendDisplayItems(Menu& menu, bool canInteract);
    void appendSettingsItems(Menu& menu, bool canRestore);

    Parts parts_;
    std::shared_ptr<Focus> focus_ = std::make_shared<Focus>();
    std::deque<std::function<void()>> heldAlerts_;
    std::shared_ptr<ConfirmationPanel> confirmation_;
    std::unique_ptr<SwitchPromptPanel> switchPrompt_;
    std::shared_ptr<IdentificationWindow> identification_;
    HalvoraCore::ConflictSet alertedConflicts_;
    std::vector<std::string> missingPlatformCalls_;
    bool menuOpen_ = false;
    HalvoraCore::ConflictSet conflictsInOpenMenu_;
    std::optional<HalvoraPlatform::SettingsTrouble::Kind> alertedSettingsTrouble_;
};

} // namespace HalvoraPro
