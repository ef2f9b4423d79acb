#pragma once

#include "ScriptedShellView.hpp"
#include "ScriptedUpdaterDriver.hpp"
#include "TextPrinting.hpp"

#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/SplitController.hpp>
#include <HalvoraPro/LocalizedStrings.hpp>
#include <HalvoraPro/MenuBarController.hpp>
#include <HalvoraSimulation/RecordedMachine.hpp>
#include <HalvoraSimulation/SimulatedLoginItemService.hpp>
#include <HalvoraSimulation/SimulatedMac.hpp>
#include <HalvoraSimulation/SimulatedUserDefaults.hpp>
#include <HalvoraSimulation/VirtualClock.hpp>
#include <MemorySettingsStore.hpp>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace ShellTests {

using TestDoubles::ScriptedShellView;
using TestDoubles::ScriptedUpdaterDriver;

inline HalvoraSimulation::RecordedMonitor sampleMonitor(const std::string& name,
                                                      HalvoraCore::PBPBehavior behavior) {
    const auto* sample = EDIDKit::sampleMonitor(name);
    return {sample->name, sample->full, sample->pictureByPicture, behavior, true,
            false,        std::nullopt};
}

/// The whole shell on the recorded machine: the ultrawide sample (latching)
/// and, when asked, the superwide (switching), with memory settings and a
/// recording view.
class ShellTest : public ::testing::Test {
protected:
    using PBPBehavior = HalvoraCore::PBPBehavior;

    /// Launches the application without letting the main loop turn.
    void build(std::vector<HalvoraSimulation::RecordedMonitor> monitors = {sampleMonitor(
                   "ultrawide-34", PBPBehavior::latchedAtPlug)},
               std::vector<HalvoraCore::DisplaySettings> saved = {}) {
        const auto mac = HalvoraSimulation::SimulatedMac::create(std::move(monitors), clock);
        machine = mac.machine;
        for (const auto tool : toolsAtStart)
            machine->setTool(tool, true);
        store = std::make_shared<TestDoubles::MemorySettingsStore>(std::move(saved));
        conflictProbe = mac.makeConflictProbe();
        controller = HalvoraCore::SplitController::create(mac.makeDisplaySystem(), clock, store,
                                                          conflictProbe, startMode);
        conflictProbe->reportTo(controller);
        updater = std::make_shared<HalvoraPro::Updater>(updaterDriver);
        loginItem = std::make_shared<HalvoraPro::LoginItem>(
            loginService, defaults, [this](const std::string& line) { log.push_back(line); });
        shell = HalvoraPro::MenuBarController::create(
            {controller, updater, loginItem, defaults, clock, view,
             [](const HalvoraPro::Text& t) {
                 return HalvoraPro::LocalizedStrings::english().resolve(t);
             },
             settingsStatus});
    }

    /// Launches the application and lets the main loop turn once.
    void start(std::vector<HalvoraSimulation::RecordedMonitor> monitors = {sampleMonitor(
                   "ultrawide-34", PBPBehavior::latchedAtPlug)},
               std::vector<HalvoraCore::DisplaySettings> saved = {}) {
        build(std::move(monitors), std::move(saved));
        clock->advance(0);
    }

    /// How the next `build` starts the application.
    HalvoraCore::SplitController::Start startMode = HalvoraCore::SplitController::Start::normal;

    HalvoraCore::DisplayID idOf(const std::string& name) const { return *machine->port(name).id; }

    /// The ultrawide's record: identified as 3440×1440, with a behaviour when given.
    static HalvoraCore::DisplaySettings
    ultrawideSettings(std::optional<PBPBehavior> behavior = std::nullopt) {
        HalvoraCore::DisplaySettings saved(HalvoraCore::DisplayIdentity::of(EDIDKit::EDID(
                                               EDIDKit::sampleMonitor("ultrawide-34")->full)),
                                           "Port 1", {3440, 1440});
        saved.behavior = behavior;
        return saved;
    }

    /// The keys of the menu's rows in order ("-" for a separator, the words
    /// for a name row).
    static std::vector<std::string> keys(const HalvoraPro::Menu& menu) {
        std::vector<std::string> result;
        for (const auto& item : menu)
            result.push_back(item.kind == HalvoraPro::MenuItem::Kind::separator ? "-"
                             : item.title.verbatim ? *item.title.verbatim
                                                   : item.title.key);
        return result;
    }
    static const HalvoraPro::MenuItem& item(const HalvoraPro::Menu& menu, const std::string& key,
                                            std::size_t nth = 0) {
        for (const auto& i : menu)
            if (i.title.key == key && nth-- == 0) return i;
        throw std::out_of_range("no menu item " + key);
    }

    /// Identifies the ultrawide as 3440×1440 and keeps the split that follows
    /// its latching verdict.
    void identifyAndKeepUltrawide() {
        shell->identify(idOf("ultrawide-34"));
        shell->identification()->confirm();
        machine->setPBP("ultrawide-34", true);
        clock->advance(20);
        ASSERT_TRUE(controller->pendingConfirmation());
        controller->keep();
        clock->advance(5);
        shell->identification()->close();
    }

    /// Other override tools already running when the application starts.
    std::vector<HalvoraCore::ConflictingTool> toolsAtStart;
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>();
    std::shared_ptr<HalvoraSimulation::RecordedMachine> machine;
    std::shared_ptr<TestDoubles::MemorySettingsStore> store;
    /// What the settings store would report about the settings file.
    std::shared_ptr<HalvoraPlatform::SettingsStatus> settingsStatus =
        std::make_shared<HalvoraPlatform::SettingsStatus>();
    std::shared_ptr<HalvoraPlatform::BackgroundConflictProbe> conflictProbe;
    std::shared_ptr<HalvoraCore::SplitController> controller;
    std::shared_ptr<ScriptedUpdaterDriver> updaterDriver =
        std::make_shared<ScriptedUpdaterDriver>();
    std::shared_ptr<HalvoraPro::Updater> updater;
    std::shared_ptr<HalvoraSimulation::SimulatedUserDefaults> defaults =
        std::make_shared<HalvoraSimulation::SimulatedUserDefaults>();
    std::shared_ptr<HalvoraSimulation::SimulatedLoginItemService> loginService =
        std::make_shared<HalvoraSimulation::SimulatedLoginItemService>();
    std::shared_ptr<HalvoraPro::LoginItem> loginItem;
    std::vector<std::string> log;
    std::shared_ptr<ScriptedShellView> view = std::make_shared<ScriptedShellView>();
    std::shared_ptr<HalvoraPro::MenuBarController> shell;
};

} // namespace ShellTests
