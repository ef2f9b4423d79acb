#include <HalvoraSimulation/SimulatedMac.hpp>

namespace HalvoraSimulation {

using HalvoraSimulation::RecordedMachine;

SimulatedMac SimulatedMac::create(std::vector<HalvoraSimulation::RecordedMonitor> monitors,
                                  std::shared_ptr<HalvoraSimulation::VirtualClock> clock) {
    auto machine = RecordedMachine::create(std::move(monitors), clock);
    auto runLoop = std::make_shared<HalvoraSimulation::VirtualRunLoop>(clock);
    auto queue = std::make_shared<HalvoraSimulation::VirtualBackgroundQueue>(clock);
    return {std::move(clock), std::move(machine), std::move(runLoop), std::move(queue)};
}

HalvoraPro::Platform SimulatedMac::platform() const {
    HalvoraPro::Platform p;
    p.displays = {machine, machine, machine, machine, machine, runLoop};
    p.backgroundQueue = backgroundQueue;
    p.processes = machine;
    p.otherApplications = machine;
    p.overrideServiceLabel = RecordedMachine::overrideServiceLabel;
    p.userID = [] { return RecordedMachine::userID; };
    p.homeLookup = HalvoraPlatform::LiveSettingsStore::HomeLookup::system();
    return p;
}

std::shared_ptr<HalvoraPlatform::LiveDisplaySystem> SimulatedMac::makeDisplaySystem() const {
    return HalvoraPlatform::LiveDisplaySystem::create(platform().displays);
}

std::shared_ptr<HalvoraPlatform::LiveConflictProbe> SimulatedMac::makeLiveConflictProbe() const {
    const HalvoraPro::Platform p = platform();
    return std::make_shared<HalvoraPlatform::LiveConflictProbe>(
        HalvoraPlatform::LiveConflictProbe::Parts{HalvoraPlatform::Launchctl(p.processes), p.otherApplications,
                                                  p.displays.coreGraphics, p.overrideServiceLabel, p.userID});
}

std::shared_ptr<HalvoraPlatform::BackgroundConflictProbe> SimulatedMac::makeConflictProbe() const {
    return HalvoraPlatform::BackgroundConflictProbe::create(makeLiveConflictProbe(), backgroundQueue, runLoop);
}

} // namespace HalvoraSimulation
