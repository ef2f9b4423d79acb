// The recorded machine's virtual clock under a long run: many timers pending
// at once, each firing and scheduling its next firing, and timers restarted
// over and over (cancelling their earlier firing), as the application's are.
// Each task must cost a logarithm of the pending count, not a scan of it.

#include <HalvoraSimulation/VirtualClock.hpp>
#include <benchmark/benchmark.h>
#include <functional>
#include <memory>
#include <vector>

namespace {

/// `pending` repeating timers with periods of 1 to 10 s, run for an hour of
/// virtual time.
void BM_RepeatingTimers(benchmark::State& state) {
    const auto pending = static_cast<int>(state.range(0));
    std::size_t fired = 0;
    for (auto _ : state) {
        HalvoraSimulation::VirtualClock clock;
        std::vector<std::function<void()>> timers(static_cast<std::size_t>(pending));
        for (int i = 0; i < pending; ++i) {
            const double period = 1 + i % 10;
            auto& timer = timers[static_cast<std::size_t>(i)];
            timer = [&clock, &timer, &fired, period] {
                ++fired;
                clock.schedule(period, timer);
            };
            clock.schedule(period, timer);
        }
        clock.advance(3600);
    }
    state.counters["firings"] =
        benchmark::Counter(static_cast<double>(fired), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_RepeatingTimers)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

/// One timer restarted `restarts` times (each restart cancels the one before)
/// among 100 others, then run out.
void BM_RestartedTimer(benchmark::State& state) {
    const auto restarts = state.range(0);
    for (auto _ : state) {
        HalvoraSimulation::VirtualClock clock;
        for (int i = 0; i < 100; ++i)
            clock.schedule(1000 + i, [] {});
        HalvoraCore::ScheduledTask timer;
        for (std::int64_t i = 0; i < restarts; ++i) {
            timer.cancel();
            timer = clock.schedule(15, [] {});
            clock.advance(0.001);
        }
        clock.advance(2000);
    }
}
BENCHMARK(BM_RestartedTimer)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
