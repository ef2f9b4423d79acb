// Thousands of random events on the recorded machine, with the whole
// application running, and the invariants that must hold after every one:
// on the project's own monitors, and on real monitors of the EDID corpus
// (with crashes, saves killed half-way and ports that alter what is written).
// Set HALVORA_SOAK_SEED to replay one seed, HALVORA_SOAK_STEPS to change the
// length, HALVORA_SOAK_TRACE=1 to see the whole run.

#include "Simulator.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/RewriteGuard.hpp>
#include <HalvoraCore/SettingsCoding.hpp>
#include <TemporaryFolder.hpp>
#include <fstream>
#include <map>
#include <set>
#include <tuple>
#include <cstdlib>
#include <deque>
#include <gtest/gtest.h>
#include <iostream>
#include <random>
#include <sstream>

using namespace Halvora;
using HalvoraSimulation::RecordedMachine;
using HalvoraCore::PBPBehavior;

namespace {

/// Three monitors that behave differently: the two samples and a third
/// panel (the ultrawide's EDID with its own serial number) that never
/// offers the split by itself.
Rig soakRig() {
    Rig rig = Rig::builtIn();
    const EDIDKit::Bytes third =
        EDIDKit::EDID(EDIDKit::sampleMonitor("ultrawide-34")->full).withSerial(0x00343477).bytes();
    rig.monitors.push_back(
        {"fixed-34", third, std::nullopt, PBPBehavior::fixedMissingSplit, true, false, std::nullopt});
    return rig;
}

EDIDKit::Bytes corpusEDID(const std::string& id) {
    std::ifstream in(std::string(HALVORA_EDID_CORPUS) + "/" + id + ".bin", std::ios::binary);
    if (!in) throw std::runtime_error("the EDID corpus has no " + id + " (tests/data/edid-corpus)");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// A half-width EDID of another monitor, made to speak for `full`'s monitor
/// (its manufacturer, product code and serial number), as the monitor's own PBP EDID.
EDIDKit::Bytes asPBPEDIDOf(const EDIDKit::Bytes& half, const EDIDKit::Bytes& full) {
    return EDIDKit::EDID(half).withIdentityOf(EDIDKit::EDID(full)).bytes();
}

/// Five real monitors of the corpus, each behaving another way: a Dell
/// U3417W that latches (its PBP EDID a U3419W's 1720×1440 one), a Samsung
/// U28E590 that switches its EDID (a U32R59x's 1920×2160 one), an LG 2560×1080
/// ultrawide whose port drops the extension blocks of what is written to it,
/// a Dell U2518D whose port stamps its own serial number on it, and a Philips
/// 5120×1440 whose port breaks the checksum.
Rig corpusRig() {
    Rig rig;
    const auto dell = corpusEDID("130029B0D48D");
    rig.monitors.push_back({"dell-u3417w", dell, asPBPEDIDOf(corpusEDID("97D0B41A2E1B"), dell),
                            PBPBehavior::latchedAtPlug, true, false, std::nullopt});
    const auto samsung = corpusEDID("08843D32EAA0");
    rig.monitors.push_back({"samsung-u28e590", samsung, asPBPEDIDOf(corpusEDID("105945211FA5"), samsung),
                            PBPBehavior::switchesOnToggle, true, false, std::nullopt});
    rig.monitors.push_back({"lg-z35", corpusEDID("2A8234A9D171"), std::nullopt, PBPBehavior::fixedMissingSplit,
                            true, false, HalvoraSimulation::WriteAlteration::extensions});
    rig.monitors.push_back({"dell-u2518d", corpusEDID("00326E631940"), std::nullopt,
                            PBPBehavior::fixedMissingSplit, false, false, HalvoraSimulation::WriteAlteration::serial});
    const auto philips = corpusEDID("1DA19B48FAB0");
    const bool hasHalf = EDIDKit::EDID(philips).hasTiming({2560, 1440});
    rig.monitors.push_back({"philips-498p9", philips, std::nullopt,
                            hasHalf ? PBPBehavior::fixedWithSplit : PBPBehavior::fixedMissingSplit, true, false,
                            HalvoraSimulation::WriteAlteration::checksum});
    return rig;
}

/// A random command of the simulator's language. It mostly answers what is
/// on the screen (a panel, the window, an alert, the open menu) as a user
/// would, so that the walk reaches deep states, and otherwise lets the
/// machine and time move.
std::string randomCommand(std::mt19937& random, const Rig& rig, const Simulator& sim, bool lifeEvents) {
    const auto pick = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
    const auto chance = [&](int percent) { return pick(100) < percent; };
    const std::string name =
        rig.monitors[static_cast<std::size_t>(pick(static_cast<int>(rig.monitors.size())))].name;
    const auto& view = sim.view();
    using HalvoraPro::PanelKind;

    if (!sim.isRunning() && chance(30)) return lifeEvents && chance(10) ? "launch --safe" : "launch";
    // The process dies: a crash, or a kill in the middle of saving the settings.
    if (lifeEvents && sim.isRunning() && chance(1)) return chance(50) ? "crash" : "crash mid-save";
    if (!view.alerts().empty() && chance(50)) return "alert " + std::to_string(1 + pick(2));
    if (view.isPanelShown(PanelKind::confirmation) && chance(30))
        return chance(65) ? "keep" : "revert";
    if (view.isPanelShown(PanelKind::switchPrompt) && chance(30))
        return chance(50) ? "prompt switch" : "prompt ignore";
    if (const auto& window = view.identification(); window && chance(40)) {
        using Action = HalvoraPro::IdentificationContent::Action;
        if (!window->radios.empty() && chance(30))
            return "window choose " +
                   (chance(80) ? std::to_string(1 + pick(static_cast<int>(window->radios.size())))
                               : "none");
        const Action action =
            window->secondary && chance(35) ? window->secondary->action : window->primary.action;
        switch (action) {
        case Action::confirm:
            return "window confirm";
        case Action::toggleDone:
            return "window toggle-done";
        case Action::skip:
            return "window skip";
        case Action::recheck:
            return "window recheck";
        case Action::close:
            return "window close";
        }
    }
    if (const auto& menu = sim.openMenu(); !menu.empty() && chance(70)) {
        std::vector<std::size_t> choosable;
        for (std::size_t i = 0; i < menu.size(); ++i) {
            const bool isQuit = menu[i].title.key == "menu.quit";
            if (menu[i].kind == HalvoraPro::MenuItem::Kind::action && menu[i].enabled &&
                (!isQuit || chance(5)))
                choosable.push_back(i + 1);
        }
        if (!choosable.empty())
            return "click " + std::to_string(choosable[static_cast<std::size_t>(
                                  pick(static_cast<int>(choosable.size())))]);
    }
    switch (pick(20)) {
    case 0:
        return "plug " + name;
    case 1:
        return "unplug " + name;
    case 2:
    case 3:
        return "pbp " + name + (pick(2) ? " on" : " off");
    case 4:
        return "interrupt " + name;
    case 5:
        return "sleep";
    case 6:
        return "wake";
    case 7:
    case 8:
        return "wait " + std::to_string(pick(4) == 0 ? pick(40) : pick(30) / 10.0);
    case 9:
    case 10:
    case 11:
    case 12:
        return "menu";
    case 13:
        return std::string("tool ") + (pick(2) ? "edid-override" : "betterdisplay") +
               (pick(3) ? " off" : " on");
    case 14:
        return chance(3) ? "quit" : "wait 5";
    case 15:
        return "update-found 2." + std::to_string(pick(9));
    case 16:
        return "click " + std::to_string(1 + pick(16)); // possibly stale or disabled
    default:
        return "wait 16";
    }
}

/// How far a run got, to show that the walk reaches the states that matter.
struct Coverage {
    int confirmations = 0, keeps = 0, quits = 0, prompts = 0, identifications = 0;
    int crashes = 0, safeStarts = 0, rewritesStopped = 0;
};

class NullBuffer final : public std::streambuf {
protected:
    int overflow(int c) override { return c; }
};

/// What the invariants compare across steps.
struct History {
    std::set<std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>> savedIdentities;
    /// Per port, the times of the override writes since the guard last had
    /// reason to count afresh (a user action, a replug, a launch, the
    /// override showing as written).
    std::map<std::string, std::vector<double>> automaticWrites;
    std::map<std::string, std::size_t> writesSeen;
};

/// Whether the command is the user acting in the application's own windows.
bool isUserAction(const std::string& command) {
    for (const char* word : {"click", "keep", "revert", "prompt", "window", "alert"})
        if (command.rfind(word, 0) == 0) return true;
    return false;
}

/// The guard's promise, seen from outside: between two reasons to count
/// afresh, no port gets a fourth automatic write within a minute of the first.
std::string overWritten(const Simulator& sim, const Rig& rig, const std::string& command, History& history) {
    const bool countAfresh = isUserAction(command) || command.rfind("launch", 0) == 0;
    for (const auto& port : sim.machine().ports()) {
        auto& seen = history.writesSeen[port.name];
        auto& automatic = history.automaticWrites[port.name];
        if (countAfresh || command == "plug " + port.name) automatic.clear();
        for (std::size_t i = seen; i < port.overrideWriteTimes.size(); ++i)
            if (!countAfresh) automatic.push_back(port.overrideWriteTimes[i]);
        seen = port.overrideWriteTimes.size();
        const auto n = automatic.size();
        if (n > static_cast<std::size_t>(HalvoraCore::RewriteGuard::maxWrites) &&
            automatic[n - 1] - automatic[n - 1 - HalvoraCore::RewriteGuard::maxWrites] <
                HalvoraCore::RewriteGuard::window)
            return port.name + " was written " + std::to_string(HalvoraCore::RewriteGuard::maxWrites + 1) +
                   " times within a minute";
        // Our override showing as written (a port that drops extension blocks
        // never shows it so) lets the count start again.
        const auto& monitor = *std::find_if(rig.monitors.begin(), rig.monitors.end(),
                                            [&](const auto& m) { return m.name == port.name; });
        if (port.writer == HalvoraSimulation::RecordedMachine::Writer::halvora &&
            port.source == HalvoraSimulation::RecordedMachine::Source::override &&
            monitor.alterOnWrite != HalvoraSimulation::WriteAlteration::extensions)
            automatic.clear();
    }
    return {};
}

/// Checks the invariants; an empty string when they hold.
std::string violation(const Simulator& sim, const Rig& rig, bool justQuit, bool quitSafely) {
    const auto file = sim.savedSettings();
    std::vector<HalvoraCore::DisplaySettings> saved;
    try {
        saved = HalvoraCore::decodeSettingsList(file);
    } catch (const std::exception& e) {
        return std::string("the settings file does not parse: ") + e.what();
    }
    const auto* controller = sim.controller();
    const auto pending = controller ? controller->pendingConfirmation() : std::nullopt;
    const bool panelShown = sim.view().isPanelShown(HalvoraPro::PanelKind::confirmation);
    if (pending && !panelShown) return "a confirmation is pending but its panel is not shown";
    if (!pending && panelShown) return "the confirmation panel is shown with nothing pending";
    for (const auto& port : sim.machine().ports()) {
        if (port.writer != HalvoraSimulation::RecordedMachine::Writer::halvora) continue;
        const auto& monitor = *std::find_if(rig.monitors.begin(), rig.monitors.end(),
                                            [&](const auto& m) { return m.name == port.name; });
        // Putting back what a port showed before (the monitor's own EDID, or
        // the other tool's) is a write of ours, but not an EDID of ours.
        std::vector<EDIDKit::Bytes> notOurs = {monitor.full,
                                               HalvoraSimulation::RecordedMachine::toolEDIDFor(monitor.full)};
        if (monitor.split) {
            notOurs.push_back(*monitor.split);
            notOurs.push_back(HalvoraSimulation::RecordedMachine::toolEDIDFor(*monitor.split));
        }
        if (std::find(notOurs.begin(), notOurs.end(), port.reportedEDID) != notOurs.end()) continue;
        if (justQuit && !sim.keepsSettingsOnQuit() && !quitSafely)
            return port.name + " still carries our EDID after quit";
        // A port that alters what it is given shows our override altered.
        if (monitor.alterOnWrite) continue;
        const auto identity = HalvoraCore::DisplayIdentity::of(EDIDKit::EDID(monitor.full));
        const bool hasSettings = std::any_of(saved.begin(), saved.end(),
                                             [&](const auto& s) { return s.identity == identity; });
        const bool isPending = pending && port.id && pending->display == *port.id;
        if (!hasSettings && !isPending)
            return port.name + " carries our EDID without settings or a pending confirmation";
    }
    return {};
}

Coverage soak(const Rig& rig, bool lifeEvents, unsigned seed, int steps) {
    Coverage coverage;
    TestSupport::TemporaryFolder folder;
    NullBuffer nothing;
    std::ostream quiet(&nothing);
    History history;
    // HALVORA_SOAK_TRACE=1 shows everything the simulator prints, to follow a failing seed.
    Simulator sim(rig, folder / "displays.json",
                  std::getenv("HALVORA_SOAK_TRACE") ? std::cerr : quiet);
    std::mt19937 random(seed);
    std::deque<std::string> recent;
    for (int step = 0; step < steps; ++step) {
        const std::string command = randomCommand(random, rig, sim, lifeEvents);
        recent.push_back(command);
        if (recent.size() > 25) recent.pop_front();
        const bool wasRunning = sim.isRunning();
        const bool wasPending = sim.controller() && sim.controller()->pendingConfirmation();
        const bool wasPrompting = sim.controller() && sim.controller()->switchPrompt();
        const bool wasSafe = sim.controller() && sim.controller()->isSafeStart();
        const bool dies = command.rfind("crash", 0) == 0;
        const std::string settingsBefore = dies ? TestSupport::readFile(sim.settingsFile()) : std::string();
        if (std::getenv("HALVORA_SOAK_TRACE")) std::cerr << "> " << command << "\n";
        sim.execute(command);
        const bool pendingNow = sim.controller() && sim.controller()->pendingConfirmation();
        coverage.confirmations += !wasPending && pendingNow ? 1 : 0;
        coverage.keeps += command == "keep" && wasPending && !pendingNow ? 1 : 0;
        coverage.quits += wasRunning && !sim.isRunning() ? 1 : 0;
        coverage.prompts +=
            !wasPrompting && sim.controller() && sim.controller()->switchPrompt() ? 1 : 0;
        coverage.identifications += command == "window confirm" ? 1 : 0;
        coverage.crashes += command.rfind("crash", 0) == 0 && wasRunning ? 1 : 0;
        coverage.safeStarts += command == "launch --safe" && !wasRunning ? 1 : 0;
        const auto ports = sim.machine().ports();
        coverage.rewritesStopped += command.rfind("wait", 0) == 0 && sim.controller() &&
                                            std::any_of(ports.begin(), ports.end(), [&](const auto& p) {
                                                return p.id && sim.controller()->isRewriteStopped(*p.id);
                                            })
                                        ? 1
                                        : 0;
        const bool justQuit = command == "quit" && wasRunning && !sim.isRunning();
        std::string problem = violation(sim, rig, justQuit, wasSafe);
        if (problem.empty()) problem = overWritten(sim, rig, command, history);
        if (problem.empty() && dies && TestSupport::readFile(sim.settingsFile()) != settingsBefore)
            problem = "the settings file changed when the application died";
        if (problem.empty()) {
            // Nothing saved is lost: a monitor's record, once saved, stays.
            decltype(history.savedIdentities) savedNow;
            for (const auto& record : HalvoraCore::decodeSettingsList(sim.savedSettings()))
                savedNow.insert({record.identity.vendorID, record.identity.productID, record.identity.serialNumber});
            if (!std::includes(savedNow.begin(), savedNow.end(), history.savedIdentities.begin(),
                               history.savedIdentities.end()))
                problem = "a saved monitor's record was lost";
            history.savedIdentities.insert(savedNow.begin(), savedNow.end());
        }
        if (!problem.empty()) {
            std::ostringstream last;
            for (const auto& c : recent)
                last << "  " << c << "\n";
            ADD_FAILURE() << "seed " << seed << ", step " << step
                          << " (replay with HALVORA_SOAK_SEED=" << seed << "): " << problem
                          << "\nthe last commands:\n"
                          << last.str();
            return coverage;
        }
    }
    return coverage;
}

int stepsWanted() {
    const char* steps = std::getenv("HALVORA_SOAK_STEPS");
    return steps ? std::atoi(steps) : 4000;
}

/// Runs the soak for each seed and adds up how far the runs got; nothing
/// when a run failed, or when HALVORA_SOAK_SEED asked for one seed alone.
std::optional<Coverage> soakSeeds(const Rig& rig, bool lifeEvents, std::initializer_list<unsigned> seeds) {
    if (const char* seed = std::getenv("HALVORA_SOAK_SEED")) {
        soak(rig, lifeEvents, static_cast<unsigned>(std::strtoul(seed, nullptr, 10)), stepsWanted());
        return std::nullopt;
    }
    Coverage total;
    for (const unsigned seed : seeds) {
        const Coverage c = soak(rig, lifeEvents, seed, stepsWanted());
        if (::testing::Test::HasFailure()) return std::nullopt;
        total.confirmations += c.confirmations;
        total.keeps += c.keeps;
        total.quits += c.quits;
        total.prompts += c.prompts;
        total.identifications += c.identifications;
        total.crashes += c.crashes;
        total.safeStarts += c.safeStarts;
        total.rewritesStopped += c.rewritesStopped;
    }
    return total;
}

TEST(Soak, RandomEventsOnThreeMonitorsKeepEveryInvariant) {
    const auto total = soakSeeds(soakRig(), false, {1u, 2u, 3u, 10u, 20261122u});
    if (!total) return;
    std::cout << "soak: " << total->identifications << " identifications, " << total->confirmations
              << " confirmations, " << total->keeps << " kept, " << total->prompts << " switch prompts, "
              << total->quits << " quits\n";
    // The walk must reach the states the invariants are about.
    EXPECT_GT(total->confirmations, 20);
    EXPECT_GT(total->keeps, 5);
    EXPECT_GT(total->quits, 5);
}

TEST(Soak, RandomEventsWithCrashesOnRealCorpusMonitorsKeepEveryInvariant) {
    const auto total = soakSeeds(corpusRig(), true, {7u, 11u, 20261123u});
    if (!total) return;
    std::cout << "corpus soak: " << total->identifications << " identifications, " << total->confirmations
              << " confirmations, " << total->keeps << " kept, " << total->quits << " quits, " << total->crashes
              << " crashes, " << total->safeStarts << " safe starts, " << total->rewritesStopped
              << " waits with a port's rewrites stopped\n";
    EXPECT_GT(total->keeps, 5);
    EXPECT_GT(total->quits, 3);
    EXPECT_GT(total->crashes, 3);
    EXPECT_GT(total->rewritesStopped, 0) << "the walk never reached a stopped port";
}

} // namespace
