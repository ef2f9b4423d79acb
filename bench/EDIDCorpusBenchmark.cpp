// Time per EDID, over every EDID of the real-monitor corpus, of what the
// application does with an EDID it sees: parse it, read its identity and
// timings, guess its native resolution and write the split EDID. Prints the
// mean, median and 99th percentile per EDID, and the same for each size of
// EDID, split by outcome: the split made, the split refused, no native to split.
// The split is asked for with tryAddingSplit, then, for comparison, with
// addingSplit, whose refusal is an exception.
//
// Each EDID is timed in many short rounds (a round runs it a few dozen times
// in a row); its time is the median of its rounds, so a round that another
// process interrupted does not count.

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/RewriteResult.hpp>
#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

using namespace EDIDKit;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int runsPerRound = 32;
constexpr int rounds = 31;
constexpr double targetMeanMicroseconds = 1.0;

enum class Outcome { split, refused, noNative };
constexpr std::array outcomes{Outcome::split, Outcome::refused, Outcome::noNative};

const char* name(Outcome outcome) {
    switch (outcome) {
    case Outcome::split:
        return "split made";
    case Outcome::refused:
        return "refused";
    case Outcome::noNative:
        return "no native";
    }
    return "";
}

struct Sample {
    std::string id;
    Bytes bytes;
    Outcome outcome = Outcome::noNative;
    double microseconds = 0;
};

std::vector<Sample> readCorpus(const fs::path& folder) {
    std::vector<Sample> samples;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() != ".bin") continue;
        std::ifstream in(entry.path(), std::ios::binary);
        samples.push_back(
            {entry.path().stem().string(),
             Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()),
             Outcome::noNative, 0});
    }
    std::sort(samples.begin(), samples.end(),
              [](const Sample& a, const Sample& b) { return a.id < b.id; });
    return samples;
}

/// The native resolution the split is made for: the panel the guess names
/// when it says this is one part of one, else the EDID's own native.
std::optional<Resolution> nativeToSplit(const EDID& edid,
                                        const std::optional<NativeResolutionGuess>& guess) {
    if (!guess) return std::nullopt;
    if (guess->kind == NativeResolutionGuess::Kind::split) return guess->candidates.front();
    return edid.nativeResolution();
}

/// How the split is asked for: as a value, or from the form that throws.
enum class Asking { asValue, throwing };

/// Everything the application reads from an EDID, then the split.
Outcome readAndSplit(const Bytes& bytes, Asking asking) {
    const EDID edid(bytes);
    benchmark::DoNotOptimize(edid.vendorID() + edid.productID() + edid.serialNumber());
    benchmark::DoNotOptimize(edid.productName());
    benchmark::DoNotOptimize(edid.preferredResolution());
    benchmark::DoNotOptimize(edid.monitorPreferredResolution());
    benchmark::DoNotOptimize(edid.rangeLimits());
    benchmark::DoNotOptimize(edid.detailedTimings().size());
    benchmark::DoNotOptimize(edid.displayIDTimings().size());
    const auto guess = edid.nativeResolutionGuess();
    benchmark::DoNotOptimize(guess);
    const auto native = nativeToSplit(edid, guess);
    if (!native) return Outcome::noNative;
    if (asking == Asking::asValue) {
        const RewriteResult split = edid.tryAddingSplit(SplitLayout::halves, *native);
        benchmark::DoNotOptimize(split.hasValue() ? split.value().bytes().data() : nullptr);
        return split ? Outcome::split : Outcome::refused;
    }
    try {
        const EDID split = edid.addingSplit(SplitLayout::halves, *native);
        benchmark::DoNotOptimize(split.bytes().data());
        return Outcome::split;
    } catch (const EDIDError&) {
        return Outcome::refused;
    }
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

/// Nearest-rank percentile of sorted values.
double percentile(const std::vector<double>& sorted, double p) {
    if (sorted.empty()) return 0;
    const auto rank =
        static_cast<std::size_t>(std::ceil(p / 100.0 * static_cast<double>(sorted.size())));
    return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

struct Figures {
    std::size_t count = 0;
    double mean = 0;
    double p50 = 0;
    double p99 = 0;
};

Figures figures(std::vector<double> times) {
    Figures f;
    f.count = times.size();
    if (times.empty()) return f;
    std::sort(times.begin(), times.end());
    double sum = 0;
    for (double t : times)
        sum += t;
    f.mean = sum / static_cast<double>(times.size());
    f.p50 = percentile(times, 50);
    f.p99 = percentile(times, 99);
    return f;
}

std::string describe(const Figures& f) {
    char text[96];
    std::snprintf(text, sizeof text, "%4zu EDIDs  mean %5.2f µs  p50 %5.2f µs  p99 %5.2f µs",
                  f.count, f.mean, f.p50, f.p99);
    return text;
}

std::string meanOf(const Figures& f) {
    if (f.count == 0) return "      -          ";
    char text[48];
    std::snprintf(text, sizeof text, "%4zu × %5.2f µs", f.count, f.mean);
    return text;
}

/// Times every sample; its time is the median of its rounds.
void measure(std::vector<Sample>& samples, Asking asking) {
    for (Sample& s : samples)
        s.outcome = readAndSplit(s.bytes, asking);
    std::vector<std::vector<double>> perRound(samples.size());
    for (int round = 0; round <= rounds; ++round) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const auto start = Clock::now();
            for (int run = 0; run < runsPerRound; ++run)
                benchmark::DoNotOptimize(readAndSplit(samples[i].bytes, asking));
            const std::chrono::duration<double, std::micro> elapsed = Clock::now() - start;
            if (round > 0)
                perRound[i].push_back(elapsed.count() / runsPerRound); // round 0 warms up
        }
    }
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i].microseconds = median(perRound[i]);
}

/// Prints the figures of all samples and of each size by outcome; returns
/// whether, in every size, a refused split costs no more than a made one.
bool report(const std::vector<Sample>& samples, const Figures& overall) {
    std::map<std::size_t, std::map<Outcome, std::vector<double>>> bySize;
    std::map<std::size_t, std::vector<double>> sizeTimes;
    for (const Sample& s : samples) {
        sizeTimes[s.bytes.size()].push_back(s.microseconds);
        bySize[s.bytes.size()][s.outcome].push_back(s.microseconds);
    }
    std::printf("  all        %s\n", describe(overall).c_str());
    bool failureNeverDearer = true;
    for (const auto& [size, times] : sizeTimes) {
        std::printf("  %3zu bytes  %s\n", size, describe(figures(times)).c_str());
        const auto& byOutcome = bySize[size];
        std::string line = "            ";
        for (Outcome outcome : outcomes) {
            const auto found = byOutcome.find(outcome);
            line +=
                std::string("  ") + name(outcome) + " " +
                meanOf(figures(found == byOutcome.end() ? std::vector<double>{} : found->second));
        }
        std::printf("%s\n", line.c_str());
        const auto made = byOutcome.find(Outcome::split);
        const auto refused = byOutcome.find(Outcome::refused);
        if (made != byOutcome.end() && refused != byOutcome.end() &&
            figures(refused->second).mean > figures(made->second).mean)
            failureNeverDearer = false;
    }
    return failureNeverDearer;
}

Figures overallFigures(const std::vector<Sample>& samples) {
    std::vector<double> all;
    for (const Sample& s : samples)
        all.push_back(s.microseconds);
    return figures(all);
}

} // namespace

int main(int argc, char** argv) {
    const fs::path folder = argc > 1 ? fs::path(argv[1]) : fs::path(HALVORA_CORPUS_DIR);
    std::vector<Sample> samples = readCorpus(folder);
    if (samples.empty()) {
        std::fprintf(stderr, "edid-corpus-bench: no EDIDs (*.bin) in %s\n", folder.c_str());
        return 1;
    }

    measure(samples, Asking::asValue);
    const Figures overall = overallFigures(samples);
    std::printf("EDID corpus (%s): parse, identity and timings, native guess and tryAddingSplit, "
                "per EDID\n",
                folder.filename().c_str());
    const bool failureNeverDearer = report(samples, overall);
    std::printf("  target: mean at most %.2f µs: %s; a refused split no dearer than a made one in "
                "every size: %s\n",
                targetMeanMicroseconds, overall.mean <= targetMeanMicroseconds ? "met" : "NOT met",
                failureNeverDearer ? "met" : "NOT met");

    measure(samples, Asking::throwing);
    std::printf("The same with addingSplit, whose refusal is an exception:\n");
    report(samples, overallFigures(samples));
    return 0;
}
