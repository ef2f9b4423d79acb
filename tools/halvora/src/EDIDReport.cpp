#include <EDIDKit/EDIDText.hpp>
#include "EDIDReport.hpp"


#include <EDIDKit/EDIDIntegrity.hpp>
#include <EDIDKit/ResolutionJSON.hpp>
#include <cstdio>
#include <sstream>

namespace Halvora {

using EDIDKit::EDID;
using EDIDKit::NativeResolutionGuess;
using EDIDKit::Resolution;
using EDIDKit::Timing;
using nlohmann::ordered_json;

namespace {

template <typename T> ordered_json optionalJSON(const std::optional<T>& value) {
    return value ? ordered_json(*value) : ordered_json(nullptr);
}

std::string fixed(double value, int decimals) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    return buffer;
}

std::string guessText(const NativeResolutionGuess& guess) {
    const Resolution native = guess.candidates.front();
    std::string panels;
    const std::size_t first = guess.kind == NativeResolutionGuess::Kind::uncertain ? 1 : 0;
    for (std::size_t i = first; i < guess.candidates.size(); ++i)
        panels += (i > first ? " or " : "") + guess.candidates[i].description();
    switch (guess.kind) {
    case NativeResolutionGuess::Kind::full:
        return "full: " + native.description() + " is the whole panel";
    case NativeResolutionGuess::Kind::split:
        return "split: part of a " + panels + " panel";
    case NativeResolutionGuess::Kind::uncertain:
        return "uncertain: " + native.description() + " is the whole panel or part of a " + panels +
               " panel";
    }
    return "";
}

std::string joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : separator) + part;
    return text;
}

} // namespace

std::string manufacturerLetters(std::uint32_t vendorID) {
    std::string letters;
    for (int shift : {10, 5, 0}) {
        const auto code = (vendorID >> shift) & 0x1F;
        if (code < 1 || code > 26 || vendorID > 0x7FFF) return "";
        letters += static_cast<char>('@' + code);
    }
    return letters;
}

ordered_json timingJSON(const Timing& t) {
    return ordered_json{{"pixelClock10kHz", t.pixelClock10kHz},
                        {"width", t.width},
                        {"hBlank", t.hBlank},
                        {"hFrontPorch", t.hFrontPorch},
                        {"hSync", t.hSync},
                        {"height", t.height},
                        {"vBlank", t.vBlank},
                        {"vFrontPorch", t.vFrontPorch},
                        {"vSync", t.vSync}};
}

ordered_json edidJSON(const EDID& edid) {
    ordered_json j;
    j["vendorID"] = edid.vendorID();
    j["productID"] = edid.productID();
    j["serialNumber"] = edid.serialNumber();
    j["productName"] = optionalJSON(edid.productName());
    j["checksumValid"] = edid.isChecksumValid();
    const auto integrity = EDIDKit::EDIDIntegrity::of(edid);
    j["badChecksums"] = ordered_json::array();
    for (const auto& bad : integrity.badChecksums)
        j["badChecksums"].push_back(
            {{"block", bad.block}, {"checksum", bad.stored}, {"shouldBe", bad.expected}});
    j["extensionBlocks"] = {{"specified", integrity.specifiedExtensions},
                            {"present", integrity.presentExtensions}};
    j["preferredResolution"] = optionalJSON(edid.preferredResolution());
    j["monitorPreferredResolution"] = optionalJSON(edid.monitorPreferredResolution());
    j["nativeResolution"] = optionalJSON(edid.nativeResolution());
    if (const auto limits = edid.rangeLimits()) {
        j["rangeLimits"] = {
            {"vRateHz", {limits->vRateHz.lowerBound, limits->vRateHz.upperBound}},
            {"hRateKHz", {limits->hRateKHz.lowerBound, limits->hRateKHz.upperBound}},
            {"maxPixelClock10kHz", limits->maxPixelClock10kHz}};
    } else {
        j["rangeLimits"] = nullptr;
    }
    j["detailedTimings"] = ordered_json::array();
    for (const Timing& t : edid.detailedTimings())
        j["detailedTimings"].push_back(timingJSON(t));
    j["displayIDTimings"] = ordered_json::array();
    for (const auto& entry : edid.displayIDTimings())
        j["displayIDTimings"].push_back(
            {{"timing", timingJSON(entry.timing)}, {"preferred", entry.preferred}});
    if (const auto guess = edid.nativeResolutionGuess()) {
        ordered_json candidates = ordered_json::array();
        for (const Resolution& r : guess->candidates)
            candidates.push_back(r);
        j["nativeResolutionGuess"] = {{"kind", std::string(EDIDKit::toString(guess->kind))},
                                      {"candidates", candidates}};
    } else {
        j["nativeResolutionGuess"] = nullptr;
    }
    return j;
}

std::string timingLine(const Timing& t) {
    return t.resolution().description() + " @ " + fixed(t.refreshRate(), 2) + " Hz, " +
           fixed(t.pixelClock10kHz / 100.0, 2) + " MHz, h " + std::to_string(t.width) + "+" +
           std::to_string(t.hBlank) + " (front porch " + std::to_string(t.hFrontPorch) + ", sync " +
           std::to_string(t.hSync) + "), v " + std::to_string(t.height) + "+" +
           std::to_string(t.vBlank) + " (front porch " + std::to_string(t.vFrontPorch) + ", sync " +
           std::to_string(t.vSync) + ")";
}

std::string edidText(const EDID& edid) {
    std::ostringstream s;
    const auto orNone = [](const std::optional<Resolution>& r) {
        return r ? r->description() : "none";
    };
    const std::string letters = manufacturerLetters(edid.vendorID());
    char vendor[16];
    std::snprintf(vendor, sizeof vendor, "0x%04X", edid.vendorID());
    s << "Size:              " << edid.bytes().size() << " bytes (" << edid.blockCount()
      << " blocks)\n";
    const auto integrity = EDIDKit::EDIDIntegrity::of(edid);
    s << "Extension blocks:  "
      << (integrity.extensionCountAgrees() ? std::to_string(integrity.presentExtensions)
                                           : "INVALID: " + integrity.extensionCountProblem())
      << "\n";
    s << "Vendor ID:         " << vendor << (letters.empty() ? "" : " (" + letters + ")") << "\n";
    s << "Product ID:        " << edid.productID() << "\n";
    s << "Serial number:     " << edid.serialNumber() << "\n";
    const auto name = edid.productName();
    s << "Product name:      " << (name ? EDIDKit::printableText(*name) : "none") << "\n";
    s << "Checksums:         "
      << (integrity.checksumsValid() ? "valid"
                                     : "INVALID: " + joined(integrity.checksumProblems(), "; "))
      << "\n";
    s << "Base preferred:    " << orNone(edid.preferredResolution())
      << "  (the base block's first timing)\n";
    s << "Monitor preferred: " << orNone(edid.monitorPreferredResolution())
      << "  (what a Mac runs it at: DisplayID's preferred timing, else the base block's)\n";
    s << "Native:            " << orNone(edid.nativeResolution()) << "\n";
    const auto guess = edid.nativeResolutionGuess();
    s << "Native guess:      " << (guess ? guessText(*guess) : "none") << "\n";
    if (const auto limits = edid.rangeLimits()) {
        s << "Range limits:      " << limits->vRateHz.lowerBound << "-"
          << limits->vRateHz.upperBound << " Hz vertical, " << limits->hRateKHz.lowerBound << "-"
          << limits->hRateKHz.upperBound << " kHz horizontal, pixel clock up to "
          << limits->maxPixelClock10kHz / 100 << " MHz\n";
    } else {
        s << "Range limits:      none\n";
    }
    const auto timings = edid.detailedTimings();
    s << "Detailed timings:  " << (timings.empty() ? "none" : std::to_string(timings.size()))
      << "\n";
    for (std::size_t i = 0; i < timings.size(); ++i)
        s << "  " << i + 1 << ". " << timingLine(timings[i]) << "\n";
    const auto fromDisplayID = edid.displayIDTimings();
    s << "DisplayID timings: "
      << (fromDisplayID.empty() ? "none" : std::to_string(fromDisplayID.size())) << "\n";
    for (std::size_t i = 0; i < fromDisplayID.size(); ++i)
        s << "  " << i + 1 << ". " << timingLine(fromDisplayID[i].timing)
          << (fromDisplayID[i].preferred ? " [preferred]" : "") << "\n";
    return s.str();
}

} // namespace Halvora
