#pragma once

#include <DisplayHardware/RecordedMachine.hpp>
#include <DisplayHardware/VirtualBackgroundQueue.hpp>
#include <DisplayHardware/VirtualRunLoop.hpp>
#include <HalvoraPro/Application.hpp>
#include <HalvoraPro/BackgroundConflictProbe.hpp>
#include <HalvoraPro/LiveConflictProbe.hpp>
#include <HalvoraPro/LiveDisplaySystem.hpp>
#include <memory>
#include <vector>

namespace HalvoraPro {

/// The recorded machine with the live platform objects on top of it: what the
/// simulator, the soak and the shell tests run the application on, so that
/// the live display system and conflict probe are the ones a Mac runs.
struct SimulatedMac {
    std::shared_ptr<DisplayHardware::VirtualClock> clock;
    std::shared_ptr<DisplayHardware::RecordedMachine> machine;
    std::shared_ptr<DisplayHardware::VirtualRunLoop> runLoop;
    std::shared_ptr<DisplayHardware::VirtualBackgroundQueue> backgroundQueue;

    /// Throws std::invalid_argument for monitors without a name or with the same one.
    static SimulatedMac create(std::vector<DisplayHardware::RecordedMonitor> monitors,
                               std::shared_ptr<DisplayHardware::VirtualClock> clock);

    /// The machine's half of the application's platform: its display seams,
    /// run loop, background queue, launchctl and BetterDisplay. The shell's
    /// half (view, defaults, login item, updates, log) is the caller's.
    Platform platform() const;

    /// What a launch of the application creates: a display system and a
    /// conflict probe of its own (an earlier launch's stop with it).
    std::shared_ptr<LiveDisplaySystem> makeDisplaySystem() const;
    /// The live probe itself, which asks launchctl and BetterDisplay on the spot.
    std::shared_ptr<LiveConflictProbe> makeLiveConflictProbe() const;
    /// The live probe looking in the background, as the application's does.
    std::shared_ptr<BackgroundConflictProbe> makeConflictProbe() const;
};

} // namespace HalvoraPro
