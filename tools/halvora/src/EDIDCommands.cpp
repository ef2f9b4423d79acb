// halvora decode, split and merge: the EDID model on files.

#include <EDIDKit/EDIDText.hpp>
#include "Arguments.hpp"
#include "Commands.hpp"
#include "EDIDReport.hpp"
#include "Files.hpp"
#include "HelpTexts.hpp"
#include "PrintableText.hpp"
#include "RewriteReport.hpp"
#include "SizeArguments.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDIntegrity.hpp>
#include <cstdio>
#include <iostream>

namespace Halvora {

using EDIDKit::EDID;
using EDIDKit::NativeResolutionGuess;
using EDIDKit::Resolution;

namespace {

bool wantsHelp(const std::vector<std::string>& args) {
    for (const auto& a : args) {
        if (a == "--") return false;
        if (a == "--help" || a == "-h") return true;
    }
    return false;
}

std::string plain(Resolution r) {
    return std::to_string(r.width) + "x" + std::to_string(r.height);
}

/// Why a panel this size cannot be split into two halves that are real
/// timings, or nothing when it can. A half narrower than 8 pixels, or one whose
/// pixel clock rounds to 0, cannot be stored; one under 10 MHz would be written
/// but then dropped by decoders as invalid data; one wider or taller than a
/// detailed timing descriptor holds cannot be written at all.
std::optional<std::string> whyNotSplittable(Resolution native) {
    const Resolution half = EDIDKit::SplitLayout::halves.splitResolution(native);
    const EDIDKit::Timing timing =
        EDIDKit::Timing::cvtReducedBlanking(half.width, half.height, 60.0);
    if (half.width < 8 || timing.pixelClock10kHz <= 0)
        return "is too small to be split into two halves";
    if (!timing.fitsDescriptor())
        return "is too large to be split: its half, " + half.description() +
               ", does not fit an EDID detailed timing descriptor (at most 4095 pixels wide "
               "and 4095 high, and a pixel clock under 655.36 MHz)";
    if (!timing.isKeptByDecoders()) {
        char clock[32];
        std::snprintf(clock, sizeof clock, "%.2f", timing.pixelClock10kHz / 100.0);
        return "is too small to be split: its half, " + half.description() + ", would need a " +
               clock + " MHz pixel clock, and EDID decoders drop timings under 10 MHz as invalid";
    }
    return std::nullopt;
}

/// The native resolution to split: --native, else the guess when it is sure.
Resolution nativeFor(const EDID& edid, const Arguments& args, const std::string& path) {
    if (const auto given = args.value("--native")) {
        const auto r = parseResolution(*given);
        if (!r)
            throw usageError("--native takes WIDTHxHEIGHT, each a whole number from 1 to " +
                             std::to_string(largestEDIDSize) +
                             ", for example --native 3440x1440 (not '" + *given + "')");
        if (const auto why = whyNotSplittable(*r))
            throw usageError("--native " + *given + " " + *why);
        return *r;
    }
    const auto guess = edid.nativeResolutionGuess();
    if (!guess)
        throw dataError(
            displayName(path) +
            ": the EDID names no native resolution; pass the panel's with --native WIDTHxHEIGHT");
    if (guess->kind == NativeResolutionGuess::Kind::full) {
        const Resolution native = guess->candidates.front();
        if (const auto why = whyNotSplittable(native))
            throw dataError(displayName(path) + ": the EDID's native resolution " +
                            native.description() + " " + *why);
        return native;
    }
    const Resolution native = *edid.nativeResolution();
    std::string message = displayName(path) + ": " + native.description() +
                          (guess->kind == NativeResolutionGuess::Kind::split
                               ? " looks like one part of a wider panel"
                               : " may be the whole panel or one part of a wider one") +
                          "; a wrong native writes a wrong EDID, so say which panel this is:";
    for (const Resolution& candidate : guess->candidates) {
        message += "\n  halvora split " + path + " --native " + plain(candidate) + "   (" +
                   (candidate == native ? "the whole panel is " + native.description()
                                        : "a " + candidate.description() + " panel") +
                   ")";
    }
    throw dataError(message);
}

template <typename Rewrite>
EDID rewriting(const std::string& path, const std::string& what, Rewrite&& rewrite) {
    try {
        return rewrite();
    } catch (const EDIDKit::EDIDError& error) {
        throw dataError(displayName(path) + ": cannot " + what + ": " + error.description());
    }
}

/// The EDID to rewrite: one whose blocks do not hang together is refused,
/// with every problem named, unless the options say how to go on.
EDID soundForRewrite(const EDID& edid, const std::string& path, const Arguments& args, CliIO& io) {
    const auto integrity = EDIDKit::EDIDIntegrity::of(edid);
    std::vector<std::string> refusals;
    if (!integrity.checksumsValid() && !args.has("--fix-checksums")) {
        for (const std::string& problem : integrity.checksumProblems())
            refusals.push_back(problem);
        refusals.back() +=
            "; the data may be damaged: if you know its content is right, pass --fix-checksums";
    }
    if (!integrity.extensionCountAgrees() && !args.has("--accept-extension-count"))
        refusals.push_back(integrity.extensionCountProblem() +
                           "; to write the blocks as they are, pass --accept-extension-count");
    if (!refusals.empty()) {
        std::string message = displayName(path) + ": not rewriting this EDID:";
        for (const std::string& refusal : refusals)
            message += "\n  " + refusal;
        throw dataError(message);
    }
    if (integrity.checksumsValid()) return edid;
    for (const auto& bad : integrity.badChecksums) {
        char line[96];
        std::snprintf(line, sizeof line, "fixed the checksum of block %zu (0x%02x, now 0x%02x)",
                      bad.block, bad.stored, bad.expected);
        io.err << "halvora: " << displayName(path) << ": " << line << "\n";
    }
    return edid.fixingChecksums();
}

void report(const EDID& before, const EDID& after, CliIO& io) {
    for (const std::string& line : describeRewrite(before, after))
        io.err << "halvora: " << line << "\n";
}

} // namespace

int decodeCommand(const std::vector<std::string>& words, CliIO& io) {
    if (wantsHelp(words)) return io.out << decodeHelp, exitSuccess;
    const Arguments args(words, {"--json", "--native-sizes"}, {});
    args.expectPositional(1, 1, "halvora decode [--json|--native-sizes] FILE|-");
    if (args.has("--json") && args.has("--native-sizes"))
        throw usageError("--json and --native-sizes cannot be used together");
    const EDID edid = readEDID(args.positional()[0], io);
    if (args.has("--native-sizes")) {
        // What `split --native` may take, as the guess allows: shell completion offers these.
        if (const auto guess = edid.nativeResolutionGuess())
            for (const Resolution& candidate : guess->candidates) io.out << plain(candidate) << "\n";
    } else if (args.has("--json"))
        io.out << printableJSON(edidJSON(edid)) << "\n";
    else
        io.out << edidText(edid);
    return exitSuccess;
}

int splitCommand(const std::vector<std::string>& words, CliIO& io) {
    if (wantsHelp(words)) return io.out << splitHelp, exitSuccess;
    const Arguments args(words, {"--hex", "--fix-checksums", "--accept-extension-count"},
                         {"--native", "-o", "--output"});
    args.expectPositional(1, 1, "halvora split FILE|- [--native WxH] [-o OUT] [--hex]");
    const std::string& path = args.positional()[0];
    if (args.value("-o") && args.value("--output")) throw usageError("give -o or --output, not both");
    const auto out = args.value("-o") ? args.value("-o") : args.value("--output");
    if ((!out || *out == "-") && !args.has("--hex") && io.outIsTerminal)
        throw usageError(
            "not writing binary EDID data to a terminal; use -o FILE, --hex, or a pipe");
    if (out && *out != "-")
        outputFile(*out); // a folder or a device is refused before anything is read
    const EDID edid = soundForRewrite(readEDID(path, io), path, args, io);
    const Resolution native = nativeFor(edid, args, path);
    const EDID split = rewriting(path, "write the split EDID", [&] {
        return edid.addingSplit(EDIDKit::SplitLayout::halves, native);
    });
    report(edid, split, io);
    writeEDID(split, out ? &*out : nullptr, args.has("--hex"), io);
    return exitSuccess;
}

int mergeCommand(const std::vector<std::string>& words, CliIO& io) {
    if (wantsHelp(words)) return io.out << mergeHelp, exitSuccess;
    const Arguments args(words, {"--hex", "--fix-checksums", "--accept-extension-count"},
                         {"-o", "--output"});
    args.expectPositional(2, 2, "halvora merge FULL SPLIT [-o OUT] [--hex]");
    if (args.value("-o") && args.value("--output")) throw usageError("give -o or --output, not both");
    const auto out = args.value("-o") ? args.value("-o") : args.value("--output");
    if ((!out || *out == "-") && !args.has("--hex") && io.outIsTerminal)
        throw usageError(
            "not writing binary EDID data to a terminal; use -o FILE, --hex, or a pipe");
    if (out && *out != "-")
        outputFile(*out); // a folder or a device is refused before anything is read
    const auto& paths = args.positional();
    if (paths[0] == "-" && paths[1] == "-")
        throw usageError("only one of FULL and SPLIT can be standard input");
    const EDID full = soundForRewrite(readEDID(paths[0], io), paths[0], args, io);
    const EDID splitMode = soundForRewrite(readEDID(paths[1], io), paths[1], args, io);
    const EDID merged = rewriting(paths[0], "merge the split version into it",
                                  [&] { return full.mergingSplitVersion(splitMode); });
    report(full, merged, io);
    writeEDID(merged, out ? &*out : nullptr, args.has("--hex"), io);
    return exitSuccess;
}

} // namespace Halvora
