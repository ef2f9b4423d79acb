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

Platform SimulatedMac::platform() const {
    Platform p;
    p.displays = {machine, machine, machine, machine, machine, runLoop};
    p.backgroundQueue = backgroundQueue;
    p.processes = machine;
    p.otherApplications = machine;
    p.overrideServiceLabel = RecordedMachine::overrideServiceLabel;
    p.userID = [] { return RecordedMachine::userID; };
    p.homeLookup = LiveSettingsStore::HomeLookup::system();
    return p;
}

std::shared_ptr<LiveDisplaySystem> SimulatedMac::makeDisplaySystem() const {
    return LiveDisplaySystem::create(platform().displays);
}

std::shared_ptr<LiveConflictProbe> SimulatedMac::makeLiveConflictProbe() const {
    const Platform p = platform();
    return std::make_shared<LiveConflictProbe>(LiveConflictProbe::Parts{
        Launchctl(p.processes), p.otherApplications, p.displays.coreGraphics, p.overrideServiceLabel, p.userID});
}

std::shared_ptr<BackgroundConflictProbe> SimulatedMac::makeConflictProbe() const {
    return BackgroundConflictProbe::create(makeLiveConflictProbe(), backgroundQueue, runLoop);
}

} // namespace HalvoraPro
