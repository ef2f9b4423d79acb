// Timer wake-ups per minute of the whole application on the recorded machine,
// once launch has settled: each firing of a timer wakes the processor on a
// Mac. With no external monitor the target is none at all; the EventLog poll
// (4 Hz, a tenth of its interval as tolerance) runs only while an attached
// display can act on a port interrupt.

#include "NullShellView.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/SettingsCoding.hpp>
#include <HalvoraPro/Application.hpp>
#include <HalvoraPro/LocalizedStrings.hpp>
#include <HalvoraSimulation/SimulatedLoginItemService.hpp>
#include <HalvoraSimulation/SimulatedMac.hpp>
#include <HalvoraSimulation/SimulatedUserDefaults.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using HalvoraCore::PBPBehavior;

HalvoraSimulation::RecordedMonitor monitor(const std::string& name, PBPBehavior behavior) {
    const auto* sample = EDIDKit::sampleMonitor(name);
    return {sample->name, sample->full, sample->pictureByPicture, behavior, true,
            false,        std::nullopt};
}

/// The monitor's record: identified, with its split override kept.
std::string keptSplit(const std::string& name, PBPBehavior behavior, EDIDKit::Resolution native) {
    const EDIDKit::EDID full(EDIDKit::sampleMonitor(name)->full);
    HalvoraCore::DisplaySettings kept(HalvoraCore::DisplayIdentity::of(full), "Port 1", native);
    kept.behavior = behavior;
    kept.overrideEDID = full.addingSplit(EDIDKit::SplitLayout::halves, native).bytes();
    return HalvoraCore::encodeSettingsList({kept}).dump(2);
}

/// Launches the application on `monitors` with `settings`, lets launch settle
/// for ten seconds, then counts the timer firings of the next ten minutes.
double wakeupsPerMinute(const fs::path& folder,
                        std::vector<HalvoraSimulation::RecordedMonitor> monitors,
                        const std::string& settings) {
    const auto clock = std::make_shared<HalvoraSimulation::VirtualClock>();
    const auto mac = HalvoraSimulation::SimulatedMac::create(std::move(monitors), clock);
    HalvoraPro::Platform p = mac.platform();
    p.settingsFile = folder / "displays.json";
    fs::remove(*p.settingsFile);
    if (!settings.empty()) std::ofstream(*p.settingsFile) << settings;
    p.view = std::make_shared<Bench::NullShellView>();
    p.defaults = std::make_shared<HalvoraSimulation::SimulatedUserDefaults>();
    p.loginItemService = std::make_shared<HalvoraSimulation::SimulatedLoginItemService>();
    p.log = [](const std::string&) {};
    p.localize = [](const HalvoraPro::Text& t) {
        return HalvoraPro::LocalizedStrings::english().resolve(t);
    };
    const auto app =
        HalvoraPro::Application::start(std::move(p), HalvoraCore::SplitController::Start::normal);
    clock->advance(10);
    const auto before = mac.runLoop->timerFirings();
    constexpr double minutes = 10;
    clock->advance(minutes * 60);
    return static_cast<double>(mac.runLoop->timerFirings() - before) / minutes;
}

} // namespace

int main() {
    char pattern[] = "/tmp/halvora-timer-bench-XXXXXX";
    const char* made = ::mkdtemp(pattern);
    if (!made) {
        std::perror("timer-bench: no temporary folder");
        return 2;
    }
    const fs::path folder(made);
    const double idle = wakeupsPerMinute(folder, {}, "");
    const double unidentified =
        wakeupsPerMinute(folder, {monitor("ultrawide-34", PBPBehavior::latchedAtPlug)}, "");
    const double identified =
        wakeupsPerMinute(folder, {monitor("ultrawide-34", PBPBehavior::latchedAtPlug)},
                         keptSplit("ultrawide-34", PBPBehavior::latchedAtPlug, {3440, 1440}));
    const double switching =
        wakeupsPerMinute(folder, {monitor("superwide-49", PBPBehavior::switchesOnToggle)},
                         keptSplit("superwide-49", PBPBehavior::switchesOnToggle, {5120, 1440}));
    fs::remove_all(folder);

    std::printf("Timer wake-ups per minute on the recorded machine, launch settled:\n");
    std::printf("  %-58s %6.0f   (target 0)\n", "idle, no external monitor", idle);
    std::printf("  %-58s %6.0f\n", "one unidentified monitor", unidentified);
    std::printf("  %-58s %6.0f\n", "one identified monitor (latching, split kept: EventLog poll)",
                identified);
    std::printf("  %-58s %6.0f\n", "one identified monitor (switches its EDID by itself)",
                switching);
    return idle == 0 ? 0 : 1;
}
