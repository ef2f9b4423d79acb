// Time per EDID of what the application does with every EDID it sees:
// parsing with every accessor, the native guess, and the split rewrite.

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDBuilder.hpp>
#include <EDIDKit/SampleMonitors.hpp>

#include <benchmark/benchmark.h>

using namespace EDIDKit;

namespace {

/// Representative EDIDs: a 128-byte base block, a 256-byte monitor with a
/// CTA-861 block, a 384-byte one with DisplayID, and a monitor in
/// picture-by-picture mode.
const std::vector<Bytes>& representative() {
    static const std::vector<Bytes> all = [] {
        const auto cvt = [](int w, int h) { return Timing::cvtReducedBlanking(w, h, 60.0); };
        std::vector<Bytes> v;
        v.push_back(EDIDBuilder().baseTiming(cvt(1920, 1080)).productName("Office 24").rangeLimits({}).build());
        v.push_back(sampleMonitor("ultrawide-34")->full);
        v.push_back(sampleMonitor("superwide-49")->full);
        v.push_back(*sampleMonitor("ultrawide-34")->pictureByPicture);
        return v;
    }();
    return all;
}

const Bytes& pick(const benchmark::State& state) {
    return representative()[static_cast<std::size_t>(state.range(0))];
}

void BM_ParseAndReadEverything(benchmark::State& state) {
    const Bytes& bytes = pick(state);
    for (auto _ : state) {
        const EDID edid(bytes);
        benchmark::DoNotOptimize(edid.isChecksumValid());
        benchmark::DoNotOptimize(edid.vendorID() + edid.productID() + edid.serialNumber());
        benchmark::DoNotOptimize(edid.productName());
        benchmark::DoNotOptimize(edid.preferredResolution());
        benchmark::DoNotOptimize(edid.nativeResolution());
        benchmark::DoNotOptimize(edid.rangeLimits());
        benchmark::DoNotOptimize(edid.detailedTimings());
        benchmark::DoNotOptimize(edid.displayIDTimings());
    }
    state.SetLabel(std::to_string(bytes.size()) + " bytes");
}

void BM_NativeResolutionGuess(benchmark::State& state) {
    const EDID edid(pick(state));
    for (auto _ : state) benchmark::DoNotOptimize(edid.nativeResolutionGuess());
    state.SetLabel(std::to_string(edid.bytes().size()) + " bytes");
}

void BM_AddingSplit(benchmark::State& state) {
    const EDID edid(pick(state));
    const auto guess = edid.nativeResolutionGuess();
    const Resolution native = guess->kind == NativeResolutionGuess::Kind::split ? guess->candidates.front()
                                                                                 : *edid.nativeResolution();
    for (auto _ : state) {
        try {
            benchmark::DoNotOptimize(edid.addingSplit(SplitLayout::halves, native));
        } catch (const EDIDError&) {
            // A base block alone cannot hold the split: the failure is what is timed.
        }
    }
    state.SetLabel(std::to_string(edid.bytes().size()) + " bytes, native " + std::to_string(native.width) + "x" +
                   std::to_string(native.height));
}

} // namespace

BENCHMARK(BM_ParseAndReadEverything)->DenseRange(0, 3);
BENCHMARK(BM_NativeResolutionGuess)->DenseRange(0, 3);
BENCHMARK(BM_AddingSplit)->DenseRange(0, 3);

BENCHMARK_MAIN();
