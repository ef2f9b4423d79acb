#pragma once

#include <HalvoraCore/SplitController.hpp>
#include <HalvoraPlatform/BackgroundConflictProbe.hpp>
#include <HalvoraPlatform/LiveDisplaySystem.hpp>
#include <HalvoraPlatform/LiveScheduler.hpp>
#include <HalvoraPlatform/LiveSettingsStore.hpp>
#include <HalvoraPlatform/seams/BackgroundQueue.hpp>
#include <HalvoraPlatform/seams/OtherApplication.hpp>
#include <HalvoraPlatform/seams/ProcessSpawner.hpp>
#include <HalvoraPro/LoginItem.hpp>
#include <HalvoraPro/MenuBarController.hpp>
#include <HalvoraPro/ShellView.hpp>
#include <HalvoraPro/Updater.hpp>
#include <HalvoraPro/UserDefaults.hpp>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace HalvoraPro {

/// What the application is made of that the platform provides: the raw
/// display seams, the other tools' whereabouts, and the shell's windows,
/// defaults, login item and update framework. On a Mac these are the AppKit,
/// IOKit and CoreGraphics objects; in the tests, the recorded machine.
struct Platform {
    /// The displays' seams, with the main run loop.
    HalvoraPlatform::LiveDisplaySystem::Platform displays;
    std::shared_ptr<HalvoraPlatform::BackgroundQueue> backgroundQueue;
    std::shared_ptr<HalvoraPlatform::ProcessSpawner> processes;
    std::shared_ptr<HalvoraPlatform::OtherApplication> otherApplications;
    /// The launchd label of the EDID override service's launch agent, as
    /// built; the user default "edidOverrideServiceLabel" overrides it.
    std::string overrideServiceLabel;
    std::function<unsigned()> userID;
    /// How the settings folder under Application Support is found.
    HalvoraPlatform::LiveSettingsStore::HomeLookup homeLookup;
    /// The settings file when it lives elsewhere (the simulator's --settings);
    /// otherwise "Halvora Pro/displays.json" under Application Support.
    std::optional<std::filesystem::path> settingsFile;

    std::shared_ptr<ShellView> view;
    std::shared_ptr<UserDefaults> defaults;
    std::shared_ptr<LoginItemService> loginItemService;
    /// Starts the update framework (which begins its schedule at once);
    /// called once, after the controller and the scheduler are running.
    std::function<std::shared_ptr<UpdaterDriver>()> startUpdaterDriver;
    HalvoraPlatform::LogSink log;
    /// The user's language.
    std::function<std::string(const Text&)> localize;
};

/// The running application: every long-lived object, created once in the
/// start-up order and kept until the process ends. There is no other start-up
/// code; `main` only starts the event loop around it.
class Application {
public:
    /// Creates, in this order: the scheduler, the display system, the settings
    /// store (in "Halvora Pro/displays.json" under Application Support), the
    /// conflict probe (looking for the override service under the label the
    /// user default names, else the build's), the controller (which loads the
    /// settings and starts watching the displays), the updater (only now is
    /// the update framework started) and the menu (which alerts about any
    /// conflicting tool already known). A safe start restores nothing until
    /// the user acts. Throws NoSettingsFolder when there is no folder for the
    /// settings, and SettingsFolderInUse when another copy of the application
    /// holds the settings folder.
    ///
    /// On a Mac the application is never destroyed: a conflict check may
    /// still run on a background thread when the process exits, and it must
    /// not outlive what it reports to.
    static std::unique_ptr<Application> start(Platform platform,
                                              HalvoraCore::SplitController::Start how);
    /// The same, but without a settings folder the process stops here, with
    /// the reason in the log and on standard error; when another copy holds
    /// the settings folder, this one says so (log, standard error and an
    /// alert) and exits with status 0.
    static std::unique_ptr<Application> startOrStop(Platform platform,
                                                    HalvoraCore::SplitController::Start how);

    /// Launching with the Option key held is a safe start.
    static HalvoraCore::SplitController::Start startFor(bool optionKeyHeld) {
        return optionKeyHeld ? HalvoraCore::SplitController::Start::safe
                             : HalvoraCore::SplitController::Start::normal;
    }

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    const std::shared_ptr<HalvoraPlatform::LiveScheduler>& scheduler() const { return scheduler_; }
    const std::shared_ptr<HalvoraPlatform::LiveDisplaySystem>& displaySystem() const { return displaySystem_; }
    const std::shared_ptr<HalvoraPlatform::LiveSettingsStore>& store() const { return store_; }
    const std::shared_ptr<HalvoraPlatform::BackgroundConflictProbe>& conflictProbe() const { return conflictProbe_; }
    const std::shared_ptr<HalvoraCore::SplitController>& controller() const { return controller_; }
    const std::shared_ptr<Updater>& updater() const { return updater_; }
    const std::shared_ptr<LoginItem>& loginItem() const { return loginItem_; }
    const std::shared_ptr<MenuBarController>& menu() const { return menu_; }
    const std::shared_ptr<UpdaterDriver>& updaterDriver() const { return updaterDriver_; }
    /// The label the conflict probe asks launchctl about.
    const std::string& overrideServiceLabel() const { return overrideServiceLabel_; }

    /// An exception reached one of the system's entries into the program
    /// (HalvoraPlatform::EntryBarrier; called inside its catch): the log gets
    /// the line, the user the error alert, and the application keeps running.
    void exceptionEscaped(std::string_view entry);

private:
    Application() = default;

    HalvoraPlatform::LogSink log_;
    std::string overrideServiceLabel_;
    std::shared_ptr<HalvoraPlatform::LiveScheduler> scheduler_;
    std::shared_ptr<HalvoraPlatform::LiveDisplaySystem> displaySystem_;
    std::shared_ptr<HalvoraPlatform::LiveSettingsStore> store_;
    std::shared_ptr<HalvoraPlatform::BackgroundConflictProbe> conflictProbe_;
    std::shared_ptr<HalvoraCore::SplitController> controller_;
    std::shared_ptr<UpdaterDriver> updaterDriver_;
    std::shared_ptr<Updater> updater_;
    std::shared_ptr<LoginItem> loginItem_;
    std::shared_ptr<MenuBarController> menu_;
};

} // namespace HalvoraPro
