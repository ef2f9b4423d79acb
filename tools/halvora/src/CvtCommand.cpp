#include "Arguments.hpp"
#include "Commands.hpp"
#include "EDIDReport.hpp"
#include "HelpTexts.hpp"
#include "SizeArguments.hpp"

#include <EDIDKit/Timing.hpp>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ostream>

namespace Halvora {

namespace {

int sizeArgument(const std::string& text, const char* what) {
    const auto value = sizeNumber(text);
    if (!value)
        throw usageError(std::string(what) + " must be a whole number from 1 to " +
                         std::to_string(largestEDIDSize) + ", the most an EDID can state (not '" +
                         text + "')");
    return *value;
}

double refreshArgument(const std::string& text) {
    double value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size() || !(value >= 1 && value <= 1000))
        throw usageError("REFRESH must be a rate in Hz from 1 to 1000 (not '" + text + "')");
    return value;
}

std::string format(const char* pattern, double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, pattern, value);
    return buffer;
}

} // namespace

/// The modeline `cvt -r` prints for a timing.
std::string modeline(const EDIDKit::Timing& t) {
    char buffer[256];
    const int hSyncStart = t.width + t.hFrontPorch;
    const int vSyncStart = t.height + t.vFrontPorch;
    std::snprintf(
        buffer, sizeof buffer, "Modeline \"%dx%dR\"  %6.2f  %d %d %d %d  %d %d %d %d +hsync -vsync",
        t.width, t.height, t.pixelClock10kHz / 100.0, t.width, hSyncStart, hSyncStart + t.hSync,
        t.width + t.hBlank, t.height, vSyncStart, vSyncStart + t.vSync, t.height + t.vBlank);
    return buffer;
}

int cvtCommand(const std::vector<std::string>& words, CliIO& io) {
    for (const auto& w : words)
        if (w == "--help" || w == "-h") return io.out << cvtHelp, exitSuccess;
    const Arguments args(words, {"--json"}, {});
    args.expectPositional(2, 3, "halvora cvt WIDTH HEIGHT [REFRESH]");
    const auto& p = args.positional();
    const int width = sizeArgument(p[0], "WIDTH");
    const int height = sizeArgument(p[1], "HEIGHT");
    const double refresh = p.size() == 3 ? refreshArgument(p[2]) : 60.0;
    const auto t = EDIDKit::Timing::cvtReducedBlanking(width, height, refresh);
    // CVT rounds the clock down to 0.25 MHz steps; a timing left with none is
    // no timing an EDID can state.
    if (t.pixelClock10kHz <= 0)
        throw usageError(t.resolution().description() + " at " + format("%g", refresh) +
                         " Hz is too small for a CVT timing: its pixel clock rounds down to 0 MHz");

    if (args.has("--json")) {
        auto j = timingJSON(t);
        j["refreshHz"] = t.refreshRate();
        j["hRateKHz"] = t.hRateKHz();
        j["modeline"] = modeline(t);
        io.out << j.dump() << "\n";
        return exitSuccess;
    }
    const std::string size = t.resolution().description();
    io.out << "CVT reduced blanking, " << size << " at " << format("%g", refresh) << " Hz\n"
           << "  pixel clock      " << t.pixelClock10kHz << " x 10 kHz ("
           << format("%.2f", t.pixelClock10kHz / 100.0) << " MHz)\n"
           << "  horizontal       " << t.width << " active, " << t.hBlank
           << " blanking (front porch " << t.hFrontPorch << ", sync " << t.hSync << ", back porch "
           << t.hBlank - t.hFrontPorch - t.hSync << ")\n"
           << "  vertical         " << t.height << " active, " << t.vBlank
           << " blanking (front porch " << t.vFrontPorch << ", sync " << t.vSync << ", back porch "
           << t.vBlank - t.vFrontPorch - t.vSync << ")\n"
           << "  refresh          " << format("%.2f", t.refreshRate()) << " Hz\n"
           << "  horizontal rate  " << format("%.2f", t.hRateKHz()) << " kHz\n"
           << "  fits an EDID detailed timing descriptor: " << (t.fitsDescriptor() ? "yes" : "no")
           << "\n"
           << modeline(t) << "\n";
    return exitSuccess;
}

} // namespace Halvora
