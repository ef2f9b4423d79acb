#pragma once

// A SplitController on the test doubles: a virtual clock starting at T = 1000,
// a scriptable display system, an in-memory store and a conflict probe.

#include <HalvoraCore/SplitController.hpp>

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SampleMonitors.hpp>

#include "MemorySettingsStore.hpp"
#include "ScriptedConflictProbe.hpp"
#include "SampleEDIDs.hpp"
#include "ScriptedDisplaySystem.hpp"
#include <HalvoraSimulation/VirtualClock.hpp>

#include <gtest/gtest.h>

#include <algorithm>

namespace ControllerTesting {

using namespace HalvoraCore;
using EDIDKit::Bytes;
using EDIDKit::Resolution;

inline constexpr double T = 1000;

/// An EDID another tool wrote for the monitor of `edid`: the same identity,
/// another screen size.
inline Bytes foreignEDIDFor(const Bytes& edid, std::uint8_t screenWidthCM = 81) {
    const EDIDKit::EDID parsed(edid);
    return parsed
        .withScreenSizeCM(screenWidthCM, static_cast<std::uint8_t>(parsed.screenHeightCM()))
        .bytes();
}

inline const DisplayMode full60{3440, 1440, 60};
inline const DisplayMode qhd60{2560, 1440, 60};
inline const DisplayMode split60{1720, 1440, 60};

class ControllerTest : public ::testing::Test {
protected:
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock = std::make_shared<HalvoraSimulation::VirtualClock>(T);
    std::shared_ptr<TestDoubles::ScriptedDisplaySystem> system = std::make_shared<TestDoubles::ScriptedDisplaySystem>();
    std::shared_ptr<TestDoubles::MemorySettingsStore> store = std::make_shared<TestDoubles::MemorySettingsStore>();
    std::shared_ptr<TestDoubles::ScriptedConflictProbe> probe = std::make_shared<TestDoubles::ScriptedConflictProbe>();
    std::shared_ptr<SplitController> controller;
    int changes = 0;
    std::vector<SplitError> errors;

    /// Saved settings for the ultrawide, identified as 3440×1440.
    DisplaySettings ultrawideSettings() const { return {identityOf(ultrawideFull()), "DP-1", {3440, 1440}}; }

    /// The ultrawide's record with the split kept while only its full EDID
    /// was known: latching, override built from the full EDID.
    DisplaySettings ultrawideKeptBeforeItsHalfWasKnown() const {
        DisplaySettings s = ultrawideSettings();
        s.overrideEDID = ultrawideSplit();
        s.behavior = PBPBehavior::latchedAtPlug;
        s.factoryFullEDID = ultrawideFull();
        return s;
    }

    /// Attaches the ultrawide in full mode, at 3440×1440, offering its full-mode modes
    /// and the split mode (as it does once the split EDID is on the port).
    void attachUltrawide(const std::string& id = "dcp-1", std::optional<DisplayMode> current = full60) {
        system->attach(id, ultrawideFull(), {full60, qhd60, split60}, current, "DP-1");
    }

    /// Saves the ultrawide's kept split override (with `behavior`) and attaches
    /// it with that override already on its port, at full resolution.
    void attachUltrawideWithSplitKept(std::optional<PBPBehavior> behavior = std::nullopt) {
        DisplaySettings s = ultrawideSettings();
        s.overrideEDID = ultrawideSplit();
        s.behavior = behavior;
        store->stored = {s};
        attachUltrawide();
        system->setOverride("dcp-1", ultrawideSplit());
    }

    void start(SplitController::Start how = SplitController::Start::normal) {
        controller = SplitController::create(system, clock, store, probe, how);
        controller->onChange = [this] { ++changes; };
        controller->onError = [this](const SplitError& e) { errors.push_back(e); };
    }

    /// Starts and lets the launch restore pass run, then forgets its calls and saves.
    void startSettled() {
        start();
        clock->advance(SplitController::restoreDebounce);
        system->calls.clear();
        store->saves.clear();
        changes = 0;
    }

    /// Whether a port interrupt now is taken as the user's and checked for a
    /// switch offer: not within the cool-down after a change the controller
    /// made itself, nor while the screens sleep or have just woken. Fires the
    /// interrupt, so a check may follow.
    bool interruptIsChecked() {
        const auto before = clock->pendingCount();
        system->fireInterrupt();
        return clock->pendingCount() > before;
    }

    /// A port interrupt, then the wait before a switch is offered for it.
    void interruptAndAwaitOffer() {
        system->fireInterrupt();
        clock->advance(SwitchOffer::promptDelay);
    }

    /// The controller last changed a display itself at `t`: port interrupts
    /// are taken for that change's own until the cool-down after it is over.
    /// Advances the clock to its end, and leaves a switch-offer check scheduled.
    void expectOwnChangeAt(double t) {
        clock->advanceTo(t + SplitController::ownSwitchCooldown - 0.1);
        EXPECT_FALSE(interruptIsChecked()) << "within the cool-down of a change at " << t;
        clock->advanceTo(t + SplitController::ownSwitchCooldown);
        EXPECT_TRUE(interruptIsChecked()) << "after the cool-down of a change at " << t;
    }

    /// The user picks `picked` on "dcp-1", and a configuration change makes
    /// a restore pass run at `at`. What that pass did with the mode: "put back"
    /// the saved one (the display is still settling from a plug-in or a
    /// write), "remembered" the user's (it has settled), or "neither".
    std::string passAfterUserPicks(const DisplayMode& picked, double at) {
        clock->advanceTo(at - SplitController::restoreDebounce);
        system->setCurrentMode("dcp-1", picked);
        system->calls.clear();
        system->fireConfigurationChange(false);
        clock->advanceTo(at);
        const auto record =
            std::find_if(store->stored.begin(), store->stored.end(), [](const DisplaySettings& s) {
                return s.identity == identityOf(ultrawideFull());
            });
        if (record != store->stored.end() && record->lastMode == picked) return "remembered";
        const auto made = calls();
        if (made.size() == 1 && made[0].rfind("setMode dcp-1 ", 0) == 0) return "put back";
        return "neither";
    }

    std::vector<std::string> calls() const { return system->callDescriptions(); }
    /// How many of the calls so far read `description` ("restoreFactoryEDID dcp-1").
    long callCount(const std::string& description) const {
        const auto all = calls();
        return std::count(all.begin(), all.end(), description);
    }
};

} // namespace ControllerTesting
