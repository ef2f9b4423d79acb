#pragma once

#include <HalvoraPlatform/BackgroundConflictProbe.hpp>
#include <HalvoraPlatform/LiveConflictProbe.hpp>
#include <HalvoraPlatform/LiveDisplaySystem.hpp>
#include <HalvoraPro/Application.hpp>
#include <HalvoraSimulation/RecordedMachine.hpp>
#include <HalvoraSimulation/VirtualBackgroundQueue.hpp>
#include <HalvoraSimulation/VirtualRunLoop.hpp>
#include <memory>
#include <vector>

namespace HalvoraSimulation {

/// The recorded machine with the live platform objects on top of it: what the
/// simulator, the soak and the shell tests run the application on, so that
/// the live display system and conflict probe are the ones a Mac runs.
struct SimulatedMac {
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock;
    std::shared_ptr<HalvoraSimulation::RecordedMachine> machine;
    std::shared_ptr<HalvoraSimulation::VirtualRunLoop> runLoop;
    std::shared_ptr<HalvoraSimulation::VirtualBackgroundQueue> backgroundQueue;

    /// Throws std::invalid_argument for monitors without a name or with the same one.
    static SimulatedMac create(std::vector<HalvoraSimulation::RecordedMonitor> monitors,
                               std::shared_ptr<HalvoraSimulation::VirtualClock> clock);

    /// The machine's half of the application's platform: its display seams,
    /// run loop, background queue, launchctl and BetterDisplay. The shell's
    /// half (view, defaults, login item, updates, log) is the caller's.
    HalvoraPro::Platform platform() const;

    /// What a launch of the application creates: a display system and a
    /// conflict probe of its own (an earlier launch's stop with it).
    std::shared_ptr<HalvoraPlatform::LiveDisplaySystem> makeDisplaySystem() const;
    /// The live probe itself, which asks launchctl and BetterDisplay on the spot.
    std::shared_ptr<HalvoraPlatform::LiveConflictProbe> makeLiveConflictProbe() const;
    /// The live probe looking in the background, as the application's does.
    std::shared_ptr<HalvoraPlatform::BackgroundConflictProbe> makeConflictProbe() const;
};

} // namespace HalvoraSimulation
