// Rebuilding the status menu while a conflict check takes 200 ms: the menu
// must open without waiting (under 16 ms at the 99th percentile) and read
// each monitor's EDID at most once. The application runs on the recorded
// machine with the live display system; only the probe is a slow stand-in,
// looking on a real background thread.

#include "NullShellView.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/SettingsStore.hpp>
#include <HalvoraPlatform/BackgroundConflictProbe.hpp>
#include <HalvoraPlatform/ThreadBackgroundQueue.hpp>
#include <HalvoraPro/LoginItem.hpp>
#include <HalvoraPro/MenuBarController.hpp>
#include <HalvoraPro/Updater.hpp>
#include <HalvoraSimulation/SimulatedLoginItemService.hpp>
#include <HalvoraSimulation/SimulatedMac.hpp>
#include <HalvoraSimulation/SimulatedUserDefaults.hpp>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <mutex>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

/// The main thread of the benchmark: work sent from the background thread
/// waits in a queue until the benchmark drains it between rebuilds.
class BenchRunLoop final : public HalvoraPlatform::MainRunLoop {
public:
    double now() const override {
        return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
    }
    std::shared_ptr<Timer> addTimer(double, bool, std::function<void()>, double) override {
        // The interrupt poll never fires here: the benchmark measures the menu.
        struct Idle final : Timer {
            void invalidate() override {}
        };
        return std::make_shared<Idle>();
    }
    void dispatchAsync(std::function<void()> action) override {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(action));
    }
    void drain() {
        std::vector<std::function<void()>> actions;
        {
            const std::lock_guard lock(mutex_);
            actions.swap(queue_);
        }
        for (auto& a : actions)
            a();
    }

private:
    std::mutex mutex_;
    std::vector<std::function<void()>> queue_;
};

/// A conflict probe that takes 200 ms, as launchctl may on a busy Mac.
class SlowProbe final : public HalvoraCore::ConflictProbe {
public:
    HalvoraCore::ConflictSet detect() override {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        return {};
    }
    void takeOver(HalvoraCore::ConflictingTool) override {}
};

class NullStore final : public HalvoraCore::SettingsStore {
public:
    std::vector<HalvoraCore::DisplaySettings> load() override { return {}; }
    void save(const std::vector<HalvoraCore::DisplaySettings>&) override {}
};

class NoUpdates final : public HalvoraPro::UpdaterDriver {
public:
    bool canCheckForUpdates() const override { return true; }
    void checkForUpdates() override {}
};

/// `count` monitors of one model, each with its own serial number.
std::vector<HalvoraSimulation::RecordedMonitor> monitors(std::size_t count) {
    std::vector<HalvoraSimulation::RecordedMonitor> result;
    const EDIDKit::EDID model(EDIDKit::sampleMonitor("ultrawide-34")->full);
    for (std::size_t i = 0; i < count; ++i) {
        const EDIDKit::Bytes edid =
            model.withSerial(model.serialNumber() + static_cast<std::uint32_t>(i)).bytes();
        result.push_back({"monitor-" + std::to_string(i + 1), edid, std::nullopt,
                          HalvoraCore::PBPBehavior::latchedAtPlug, true, false, std::nullopt});
    }
    return result;
}

void BM_MenuRebuildWhileAConflictCheckTakes200ms(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    auto clock = std::make_shared<HalvoraSimulation::VirtualClock>();
    const auto mac = HalvoraSimulation::SimulatedMac::create(monitors(count), clock);
    auto runLoop = std::make_shared<BenchRunLoop>();
    auto displays = HalvoraPlatform::LiveDisplaySystem::create(
        {mac.machine, mac.machine, mac.machine, mac.machine, mac.machine, runLoop});
    auto queue = std::make_shared<HalvoraPlatform::ThreadBackgroundQueue>();
    auto probe =
        HalvoraPlatform::BackgroundConflictProbe::create(std::make_shared<SlowProbe>(), queue, runLoop);
    auto controller =
        HalvoraCore::SplitController::create(displays, clock, std::make_shared<NullStore>(), probe);
    probe->reportTo(controller);
    auto defaults = std::make_shared<HalvoraSimulation::SimulatedUserDefaults>();
    auto loginItem = std::make_shared<HalvoraPro::LoginItem>(
        std::make_shared<HalvoraSimulation::SimulatedLoginItemService>(), defaults,
        [](const std::string&) {});
    auto shell = HalvoraPro::MenuBarController::create(
        {controller, std::make_shared<HalvoraPro::Updater>(std::make_shared<NoUpdates>()),
         loginItem, defaults, clock, std::make_shared<Bench::NullShellView>(),
         [](const HalvoraPro::Text& t) { return t.key; },
         std::make_shared<HalvoraPlatform::SettingsStatus>()});
    clock->advance(10);
    runLoop->drain();

    std::vector<double> milliseconds;
    std::size_t reads = 0, rebuilds = 0;
    for (auto _ : state) {
        const auto readsBefore = mac.machine->edidReads();
        const auto start = Clock::now();
        benchmark::DoNotOptimize(shell->buildMenu());
        const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(elapsed);
        milliseconds.push_back(elapsed * 1000);
        reads += mac.machine->edidReads() - readsBefore;
        ++rebuilds;
        shell->menuDidClose();
        runLoop->drain(); // the turn ends: results from the background come in
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    const auto at = [&](double q) {
        const auto index = static_cast<std::size_t>(q * static_cast<double>(milliseconds.size()));
        return milliseconds[std::min(milliseconds.size() - 1, index)];
    };
    state.counters["p50_ms"] = at(0.50);
    state.counters["p99_ms"] = at(0.99);
    state.counters["edid_reads_per_monitor"] =
        static_cast<double>(reads) / static_cast<double>(rebuilds * count);
    if (at(0.99) >= 16) state.SkipWithError("the 99th percentile is 16 ms or more");
    if (reads > rebuilds * count)
        state.SkipWithError("a monitor's EDID was read more than once in a rebuild");
}

} // namespace

BENCHMARK(BM_MenuRebuildWhileAConflictCheckTakes200ms)
    ->Arg(1)
    ->Arg(4)
    ->Arg(8)
    ->UseManualTime()
    ->Iterations(400)
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
