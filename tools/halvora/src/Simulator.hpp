#pragma once

#include "CommandTable.hpp"
#include "Gestures.hpp"
#include "Rig.hpp"
#include "SelfTestObserver.hpp"
#include <HalvoraSimulation/SimulatedShellView.hpp>

#include <HalvoraCore/SplitController.hpp>
#include <HalvoraPro/Application.hpp>
#include <HalvoraPro/MenuItem.hpp>
#include <HalvoraSimulation/RecordedMachine.hpp>
#include <HalvoraSimulation/SimulatedMac.hpp>
#include <HalvoraSimulation/VirtualClock.hpp>
#include <HalvoraSimulation/VirtualRunLoop.hpp>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>

namespace Halvora {

/// The whole application (the real controller, the shell's rules, and the live
/// display system, scheduler and conflict probe) running on the recorded
/// machine, driven one command at a time.
class Simulator {
public:
    /// Real views that the run also drives (the application's self-test on a
    /// Mac); without them the simulated view alone shows everything and the
    /// user's gestures go straight to the shell.
    struct RealViews {
        /// Shown everything the simulated view is shown.
        std::shared_ptr<HalvoraPro::ShellView> mirror;
        /// Carries out the user's gestures on the real controls.
        std::shared_ptr<Gestures> gestures;
        /// Told of each launch of the application (the status item goes up).
        std::function<void(HalvoraPro::Application&)> launched;
        /// Told when the application ends, by quitting or a crash.
        std::function<void()> ended;
    };

    /// Launches the application on the rig (with the Option key held when
    /// `safeStart`); its settings live in `settingsFile`.
    Simulator(Rig rig, std::filesystem::path settingsFile, std::ostream& out,
              bool safeStart = false, RealViews real = {});
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// Carries out one command line (blank lines and `#` comments do
    /// nothing), then delivers the machine's events that are due. Returns
    /// false after printing why when the command cannot be carried out.
    bool execute(const std::string& line);
    /// Why the last command that could not be carried out failed.
    const std::string& lastFailure() const { return lastFailure_; }

    /// One line of JSON: the time, the monitors, the panels, the alerts and
    /// the saved settings.
    nlohmann::json state() const;
    /// The saved settings exactly as in the settings file ([] without one).
    nlohmann::json savedSettings() const;

    bool isRunning() const { return application_ != nullptr; }
    /// Why the first launch went wrong (another copy holds the settings
    /// folder, or the settings file cannot be used), as printed.
    const std::optional<std::string>& launchProblem() const { return launchProblem_; }
    const HalvoraSimulation::RecordedMachine& machine() const { return *mac_.machine; }
    const HalvoraCore::SplitController* controller() const { return controllerNow(); }
    const HalvoraSimulation::SimulatedShellView& view() const { return *view_; }
    /// The windows the application shows now, each with its content's text.
    SelfTestObserver::Shown windowsShown() const;
    /// The menu last opened, until an item is chosen.
    const HalvoraPro::Menu& openMenu() const { return menu_; }
    const std::filesystem::path& settingsFile() const { return settingsFile_; }
    double now() const { return clock_->now(); }
    /// Whether quitting leaves the displays as they are ("keepSettingsOnQuit").
    bool keepsSettingsOnQuit() const {
        return defaults_->flag(HalvoraPro::UserDefaults::keepSettingsOnQuit);
    }
    /// The help text listing the commands.
    static std::string help();

private:
    /// Starts the application; what went wrong that the user is told about.
    std::optional<std::string> launch(bool safe);
    /// A trouble with the settings file that was not there at the last look,
    /// in words; the application alerts about it too.
    std::optional<std::string> newSettingsTrouble();
    HalvoraCore::SplitController* controllerNow() const {
        return application_ ? application_->controller().get() : nullptr;
    }
    void shutDown();
    /// Leaves what a settings writer killed half-way leaves behind.
    void leaveUnfinishedSave() const;
    /// The commands: their names, their help, and what carries them out.
    static const std::vector<TableCommand<Simulator>>& commands();
    void run(const std::vector<std::string>& words);
    void plugCommand(const std::vector<std::string>& words);
    void pbpCommand(const std::vector<std::string>& words);
    void sleepCommand(const std::vector<std::string>& words);
    void waitCommand(const std::vector<std::string>& words);
    void menuCommand(const std::vector<std::string>& words);
    void clickCommand(const std::vector<std::string>& words);
    void confirmationCommand(const std::vector<std::string>& words);
    void promptCommand(const std::vector<std::string>& words);
    void windowCommand(const std::vector<std::string>& words);
    void alertCommand(const std::vector<std::string>& words);
    void toolCommand(const std::vector<std::string>& words);
    void updateFoundCommand(const std::vector<std::string>& words);
    void quitCommand(const std::vector<std::string>& words);
    void crashCommand(const std::vector<std::string>& words);
    void launchCommand(const std::vector<std::string>& words);
    void stateCommand(const std::vector<std::string>& words);
    void settingsCommand(const std::vector<std::string>& words);
    void helpCommand(const std::vector<std::string>& words);
    void printMenu();
    /// Prints the open menu's items.
    void printItems();
    void click(std::size_t number);
    HalvoraPro::MenuBarController& shell();
    std::string nameOf(const HalvoraCore::DisplayID& display) const;
    /// Throws a command error unless the rig has a monitor of that name.
    void requireMonitor(const std::string& name) const;
    /// Prints each display whose EDID or mode changed since it was last seen.
    void reportDisplayChanges();

    Rig rig_;
    std::filesystem::path settingsFile_;
    std::ostream& out_;
    std::string lastFailure_;
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock_;
    /// The recorded machine with its run loop and queue on the clock.
    HalvoraSimulation::SimulatedMac mac_;
    std::shared_ptr<HalvoraSimulation::SimulatedShellView> view_;
    RealViews real_;
    /// The view the application draws on: the simulated one, or both.
    std::shared_ptr<HalvoraPro::ShellView> shownOn_;
    /// What outlives a run of the application: the user's defaults, the
    /// system's login item record and the update framework.
    std::shared_ptr<HalvoraPro::UserDefaults> defaults_;
    std::shared_ptr<HalvoraPro::LoginItemService> loginItemService_;
    std::shared_ptr<HalvoraPro::UpdaterDriver> updaterDriver_;
    /// The running application, made anew at each launch as a process is.
    std::unique_ptr<HalvoraPro::Application> application_;
    HalvoraPro::Menu menu_;
    std::vector<HalvoraSimulation::RecordedMachine::Port> seen_;
    mutable int unfinishedSaves_ = 0;
    std::optional<std::string> launchProblem_;
    std::optional<HalvoraPlatform::SettingsTrouble::Kind> settingsTroubleSeen_;
};

} // namespace Halvora
