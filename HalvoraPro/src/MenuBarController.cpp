#include <HalvoraPro/Alert.hpp>
#include <HalvoraPro/MenuBarController.hpp>

namespace HalvoraPro {

using HalvoraCore::ConflictingTool;
using HalvoraCore::DisplayID;
using HalvoraCore::ModeChoice;
using HalvoraCore::PBPBehavior;
using HalvoraCore::SplitError;

namespace {

/// The order in which conflicting tools are listed and alerted about.
constexpr ConflictingTool toolOrder[] = {ConflictingTool::edidOverrideService,
                                         ConflictingTool::betterDisplay};

Text nameOrUnnamed(const std::string& name) {
    return name.empty() ? Text::localized("menu.unnamedDisplay") : Text::literal(name);
}

} // namespace

std::shared_ptr<MenuBarController> MenuBarController::create(Parts parts) {
    auto menu = std::shared_ptr<MenuBarController>(new MenuBarController(std::move(parts)));
    const std::weak_ptr<MenuBarController> weak = menu;
    menu->parts_.controller->onChange = [weak] {
        if (const auto self = weak.lock()) self->controllerChanged();
    };
    menu->parts_.controller->onError = [weak](const SplitError& error) {
        if (const auto self = weak.lock()) self->show(error);
    };
    if (menu->parts_.settings) {
        menu->parts_.settings->onChange = [weak] {
            if (const auto self = weak.lock()) self->settingsChanged();
        };
    }
    menu->alertNewConflicts();
    menu->settingsChanged();
    return menu;
}

MenuBarController::MenuBarController(Parts parts) : parts_(std::move(parts)) {}

ConfirmationPanel& MenuBarController::confirmation() {
    if (!confirmation_) {
        confirmation_ =
            ConfirmationPanel::create(parts_.controller, parts_.scheduler, parts_.view, focus_);
        confirmation_->onDismissed = [weak =
                                          weak_from_this()](std::optional<ShellWindow> keyGoesTo) {
            if (const auto self = weak.lock()) self->confirmationEnded(keyGoesTo);
        };
    }
    return *confirmation_;
}

SwitchPromptPanel& MenuBarController::switchPrompt() {
    if (!switchPrompt_)
        switchPrompt_ = std::make_unique<SwitchPromptPanel>(parts_.controller, parts_.view, focus_);
    return *switchPrompt_;
}

void MenuBarController::controllerChanged() {
    if (const auto pending = parts_.controller->pendingConfirmation())
        confirmation().render(pending->deadline);
    else if (confirmation_ && confirmation_->isTimerRunning())
        confirmation_->dismiss();
    switchPrompt().refresh();
    // A conflict check answered after the menu opened: the open menu shows it.
    if (menuOpen_ && parts_.controller->conflicts() != conflictsInOpenMenu_)
        parts_.view->updateOpenMenu(composeMenu());
    alertNewConflicts();
}

void MenuBarController::presentConfirmation() {
    if (const auto pending = parts_.controller->pendingConfirmation())
        confirmation().present(pending->deadline);
}

void MenuBarController::confirmationEnded(std::optional<ShellWindow> keyGoesTo) {
    if (keyGoesTo == ShellWindow::identification && identification_) identification_->takeKeyBack();
    if (heldAlerts_.empty()) return;
    // The panel goes in the middle of the controller's keep or revert: the
    // held alerts run on a later turn of the run loop, once that has ended,
    // not in a modal loop inside it.
    parts_.scheduler->schedule(0, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        auto held = std::move(self->heldAlerts_);
        self->heldAlerts_.clear();
        for (auto& showAlert : held)
            self->whenAlertsMayRun(std::move(showAlert));
    });
}

void MenuBarController::whenAlertsMayRun(std::function<void()> showAlert) {
    // A modal alert over the confirmation panel would block Keep, and the
    // change would revert: alerts wait for the panel to go.
    if (focus_->holdsAlerts())
        heldAlerts_.push_back(std::move(showAlert));
    else
        showAlert();
}

void MenuBarController::runAlert(const Alert& alert, std::function<void(std::size_t)> response) {
    // An alert is application-modal: the application comes to the front for it.
    parts_.view->activateApplication();
    parts_.view->runAlert(alert, std::move(response));
}

void MenuBarController::press(PanelKind panel, PanelButton button) {
    perform([&] {
        if (panel == PanelKind::confirmation) {
            if (confirmation_) confirmation_->press(button);
        } else if (switchPrompt_) {
            switchPrompt_->press(button);
        }
    });
}

// --- the menu --------------------------------------------------------------

Menu MenuBarController::buildMenu() {
    parts_.controller->checkConflicts();
    menuOpen_ = true;
    return composeMenu();
}

void MenuBarController::menuDidClose() {
    menuOpen_ = false;
}

Menu MenuBarController::composeMenu() {
    auto& controller = *parts_.controller;
    Menu menu;
    const std::weak_ptr<MenuBarController> weak = weak_from_this();
    conflictsInOpenMenu_ = controller.conflicts();

    if (!missingPlatformCalls_.empty()) {
        std::string names;
        for (const auto& name : missingPlatformCalls_)
            names += (names.empty() ? "" : ", ") + name;
        menu.push_back(MenuItem::titleRow(Text::localized("menu.platformCallsMissing", {names})));
        menu.push_back(MenuItem::separatorItem());
    }

    const auto& conflicts = controller.conflicts();
    for (const auto tool : toolOrder) {
        if (!conflicts.contains(tool)) continue;
        menu.push_back(MenuItem::actionItem(conflictMenuTitle(tool), true, [weak, tool] {
            if (const auto self = weak.lock()) self->showConflict(tool);
        }));
    }
    const auto* trouble =
        parts_.settings && parts_.settings->trouble() ? &*parts_.settings->trouble() : nullptr;
    if (trouble)
        menu.push_back(MenuItem::actionItem(settingsTroubleMenuTitle(trouble->kind), true, [weak] {
            if (const auto self = weak.lock()) self->showSettingsTrouble();
        }));
    if (!conflicts.empty() || trouble) menu.push_back(MenuItem::separatorItem());

    const bool canInteract = !controller.pendingConfirmation().has_value();
    if (controller.isSafeStart()) {
        // Nothing saved was put back at this launch; any action, or this
        // item, brings the saved settings back.
        menu.push_back(MenuItem::titleRow(Text::localized("menu.safeStart")));
        menu.push_back(
            MenuItem::actionItem(Text::localized("menu.resumeRestoring"), canInteract, [weak] {
                if (const auto self = weak.lock()) self->parts_.controller->resumeRestoring();
            }));
        menu.push_back(MenuItem::separatorItem());
    }
    const bool canRestore = canInteract && !controller.isObservingPBP();
    appendDisplayItems(menu, canInteract);
    appendSettingsItems(menu, canRestore);
    return menu;
}

void MenuBarController::appendDisplayItems(Menu& menu, bool canInteract) {
    const std::weak_ptr<MenuBarController> weak = weak_from_this();
    const std::weak_ptr<HalvoraCore::SplitController> controller = parts_.controller;
    const auto states = parts_.controller->displayStates();
    for (const auto& state : states) {
        const DisplayID id = state.id;
        menu.push_back(MenuItem::titleRow(nameOrUnnamed(state.name)));
        const auto identify = [weak, id] {
            if (const auto self = weak.lock()) self->identify(id);
        };
        if (!state.native || !state.split) {
            menu.push_back(
                MenuItem::actionItem(Text::localized("menu.identify"), canInteract, identify));
        } else {
            if (!state.isSplitApplied && state.behavior &&
                *state.behavior != PBPBehavior::switchesOnToggle) {
                menu.push_back(MenuItem::actionItem(
                    Text::localized("menu.applyHalves", {state.split->description()}), canInteract,
                    [weak, id] {
                        if (const auto self = weak.lock()) self->applySplit(id);
                    }));
            } else {
                const auto switchTo = [weak, controller, id](ModeChoice choice) {
                    return [weak, controller, id, choice] {
                        const auto self = weak.lock();
                        const auto c = controller.lock();
                        if (self && c) self->perform([&] { c->switchTo(choice, id); });
                    };
                };
                menu.push_back(MenuItem::actionItem(
                    Text::localized("menu.full", {state.native->description()}), canInteract,
                    switchTo(ModeChoice::full), state.current == ModeChoice::full));
                menu.push_back(MenuItem::actionItem(
                    Text::localized("menu.split", {state.split->description()}), canInteract,
                    switchTo(ModeChoice::split), state.current == ModeChoice::split));
            }
            menu.push_back(
                MenuItem::actionItem(Text::localized("menu.reidentify"), canInteract, identify));
        }
        menu.push_back(MenuItem::separatorItem());
    }
    if (states.empty()) {
        menu.push_back(MenuItem::titleRow(Text::localized("menu.noDisplays")));
        menu.push_back(MenuItem::separatorItem());
    }
}

void MenuBarController::appendSettingsItems(Menu& menu, bool canRestore) {
    const std::weak_ptr<MenuBarController> weak = weak_from_this();
    menu.push_back(MenuItem::actionItem(Text::localized("menu.restoreFactory"), canRestore, [weak] {
        if (const auto self = weak.lock())
            self->perform([&] { self->parts_.controller->restoreFactory(); });
    }));
    menu.push_back(MenuItem::separatorItem());

    const std::weak_ptr<LoginItem> loginItem = parts_.loginItem;
    menu.push_back(MenuItem::actionItem(
        Text::localized("menu.openAtLogin"), true,
        [loginItem] {
            const auto item = loginItem.lock();
            if (!item) return;
            if (item->service().status() == LoginItemService::Status::requiresApproval)
                item->service().openSystemSettingsLoginItems();
            else
                item->setEnabled(!item->isEnabled());
        },
        parts_.loginItem->isEnabled()));

    const bool keepOnQuit = parts_.defaults->flag(UserDefaults::keepSettingsOnQuit);
    const std::weak_ptr<UserDefaults> defaults = parts_.defaults;
    menu.push_back(MenuItem::actionItem(
        Text::localized("menu.keepOnQuit"), true,
        [defaults, keepOnQuit] {
            if (const auto d = defaults.lock())
                d->setBool(UserDefaults::keepSettingsOnQuit, !keepOnQuit);
        },
        keepOnQuit));

    const auto& pendingVersion = parts_.updater->pendingVersion();
    const std::weak_ptr<Updater> updater = parts_.updater;
    const std::weak_ptr<ShellView> view = parts_.view;
    // A build without the update framework says so, in an item that cannot be chosen.
    menu.push_back(MenuItem::actionItem(
        !parts_.updater->isAvailable() ? Text::localized("menu.updatesUnavailable")
        : pendingVersion               ? Text::localized("menu.updateAvailable", {*pendingVersion})
                                       : Text::localized("menu.checkForUpdates"),
        parts_.updater->canCheckForUpdates(), [updater, view] {
            if (const auto v = view.lock()) v->activateApplication();
            if (const auto u = updater.lock()) u->checkForUpdates();
        }));

    MenuItem quitItem = MenuItem::actionItem(Text::localized("menu.quit"), true, [weak] {
        if (const auto self = weak.lock()) self->quit();
    });
    quitItem.keyEquivalent = "q";
    menu.push_back(std::move(quitItem));
}

// --- actions ---------------------------------------------------------------

void MenuBarController::perform(const std::function<void()>& operation) {
    try {
        operation();
    } catch (...) {
        show(SplitError::wrappingCurrentException());
    }
}

void MenuBarController::applySplit(const DisplayID& display) {
    try {
        parts_.controller->applySplit(display);
    } catch (...) {
        show(SplitError::wrappingCurrentException());
        return;
    }
    presentConfirmation();
}

void MenuBarController::identify(const DisplayID& display) {
    if (identification_) {
        identification_->bringForward();
        return;
    }
    std::string name;
    for (const auto& state : parts_.controller->displayStates())
        if (state.id == display) name = state.name;
    if (name.empty()) name = parts_.localize(Text::localized("menu.unnamedDisplay"));
    auto window = IdentificationWindow::create(parts_.controller->startIdentification(display),
                                               name, parts_.view, focus_);
    const std::weak_ptr<MenuBarController> weak = weak_from_this();
    const std::weak_ptr<LoginItem> loginItem = parts_.loginItem;
    window->onConfirm = [loginItem] {
        if (const auto item = loginItem.lock()) item->enableByDefaultOnce();
    };
    window->onAwaitingConfirmation = [weak] {
        if (const auto self = weak.lock()) self->presentConfirmation();
    };
    window->onClose = [weak, w = std::weak_ptr<IdentificationWindow>(window)] {
        const auto self = weak.lock();
        if (self && self->identification_ && self->identification_ == w.lock())
            self->identification_.reset();
    };
    identification_ = window;
    window->render();
}

void MenuBarController::show(const SplitError& error) {
    whenAlertsMayRun([weak = weak_from_this(), alert = errorAlert(SplitError::wrapping(error))] {
        if (const auto self = weak.lock()) self->runAlert(alert, [](std::size_t) {});
    });
}

void MenuBarController::showConflict(ConflictingTool tool) {
    if (focus_->holdsAlerts()) {
        // Asked again once the panel has gone, when the tool may have gone too.
        heldAlerts_.push_back([weak = weak_from_this(), tool] {
            if (const auto self = weak.lock()) self->showConflict(tool);
        });
        return;
    }
    if (!parts_.controller->conflicts().contains(tool)) return;
    const std::weak_ptr<MenuBarController> weak = weak_from_this();
    runAlert(conflictAlert(tool), [weak, tool](std::size_t button) {
        const auto self = weak.lock();
        if (!self || button != 0 || tool != ConflictingTool::edidOverrideService) return;
        self->perform(
            [&] { self->parts_.controller->takeOver(ConflictingTool::edidOverrideService); });
    });
}

void MenuBarController::alertNewConflicts() {
    std::vector<ConflictingTool> fresh;
    for (const auto tool : toolOrder)
        if (parts_.controller->conflicts().contains(tool) && !alertedConflicts_.contains(tool))
            fresh.push_back(tool);
    if (fresh.empty()) return;
    alertedConflicts_.insert(fresh.begin(), fresh.end());
    parts_.scheduler->schedule(0, [weak = weak_from_this(), fresh] {
        const auto self = weak.lock();
        if (!self) return;
        for (const auto tool : fresh)
            self->showConflict(tool);
    });
}

void MenuBarController::settingsChanged() {
    if (!parts_.settings) return;
    const auto& trouble = parts_.settings->trouble();
    if (menuOpen_) parts_.view->updateOpenMenu(composeMenu());
    if (!trouble) {
        alertedSettingsTrouble_.reset(); // a save succeeded: a later failure is news again
        return;
    }
    if (alertedSettingsTrouble_ == trouble->kind) return;
    alertedSettingsTrouble_ = trouble->kind;
    // Told on a later turn of the run loop: a save fails in the middle of
    // whatever the controller is doing.
    parts_.scheduler->schedule(0, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->showSettingsTrouble();
    });
}

void MenuBarController::showSettingsTrouble() {
    // Like every alert, it waits while the confirmation panel is shown, and
    // says what the trouble is when it runs.
    whenAlertsMayRun([weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self || !self->parts_.settings || !self->parts_.settings->trouble()) return;
        const HalvoraPlatform::SettingsTrouble& trouble = *self->parts_.settings->trouble();
        self->runAlert(settingsTroubleAlert(trouble, self->parts_.localize(settingsTroubleReason(trouble))),
                       [](std::size_t) {});
    });
}

void MenuBarController::quit() {
    // "Keep split resolutions after quitting" keeps what the user confirmed;
    // a change still waiting for confirmation is always taken back.
    if (parts_.defaults->flag(UserDefaults::keepSettingsOnQuit))
        parts_.controller->revertPendingForQuit();
    else
        parts_.controller->restoreForQuit();
    parts_.view->terminate();
}

} // namespace HalvoraPro
