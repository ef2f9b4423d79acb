#pragma once

#include <HalvoraPro/LiveConflictProbe.hpp>
#include <HalvoraPro/LiveDisplaySystem.hpp>

#include <DisplayHardware/RecordedMachine.hpp>
#include <DisplayHardware/VirtualRunLoop.hpp>

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

    /// Throws std::invalid_argument for monitors without a name or with the same one.
    static SimulatedMac create(std::vector<DisplayHardware::RecordedMonitor> monitors,
                               std::shared_ptr<DisplayHardware::VirtualClock> clock);

    /// What a launch of the application creates: a display system and a
    /// conflict probe of its own (an earlier launch's stop with it).
    std::shared_ptr<LiveDisplaySystem> makeDisplaySystem() const;
    std::shared_ptr<LiveConflictProbe> makeConflictProbe() const;
};

} // namespace HalvoraPro
