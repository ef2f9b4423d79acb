#include <HalvoraPro/SimulatedMac.hpp>

namespace HalvoraPro {

using DisplayHardware::RecordedMachine;

SimulatedMac SimulatedMac::create(std::vector<DisplayHardware::RecordedMonitor> monitors,
                                  std::shared_ptr<DisplayHardware::VirtualClock> clock) {
    auto machine = RecordedMachine::create(std::move(monitors), clock);
    auto runLoop = std::make_shared<DisplayHardware::VirtualRunLoop>(clock);
    auto queue = std::make_shared<DisplayHardware::VirtualBackgroundQueue>(clock);
    return {std::move(clock), std::move(machine), std::move(runLoop), std::move(queue)};
}

std::shared_ptr<LiveDisplaySystem> SimulatedMac::makeDisplaySystem() const {
    return LiveDisplaySystem::create({machine, machine, machine, machine, machine, runLoop});
}

std::shared_ptr<LiveConflictProbe> SimulatedMac::makeLiveConflictProbe() const {
    return std::make_shared<LiveConflictProbe>(LiveConflictProbe::Parts{
        Launchctl(machine), machine, machine, RecordedMachine::overrideServiceLabel,
        [] { return RecordedMachine::userID; }});
}

std::shared_ptr<BackgroundConflictProbe> SimulatedMac::makeConflictProbe() const {
    return BackgroundConflictProbe::create(makeLiveConflictProbe(), backgroundQueue, runLoop);
}

} // namespace HalvoraPro
