#include "Files.hpp"

#include <EDIDKit/EDIDText.hpp>
#include <HalvoraPro/AtomicFile.hpp>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace Halvora {

namespace {

/// Bigger than any EDID (at most 256 blocks of 128 bytes) by far; protects
/// against being handed a disk image by mistake.
constexpr std::size_t maxInputSize = 1 << 20;

std::string systemError() { return std::strerror(errno); }

} // namespace

std::string displayName(const std::string& path) { return path == "-" ? "standard input" : path; }

EDIDKit::Bytes readInput(const std::string& path, CliIO& io) {
    EDIDKit::Bytes bytes;
    const auto readFrom = [&](std::istream& stream) {
        char buffer[4096];
        while (stream.read(buffer, sizeof buffer) || stream.gcount() > 0) {
            bytes.insert(bytes.end(), buffer, buffer + stream.gcount());
            if (bytes.size() > maxInputSize)
                throw dataError(displayName(path) + ": not an EDID: more than 1 MiB of data");
        }
        if (stream.bad()) throw dataError(displayName(path) + ": cannot read: " + systemError());
    };
    if (path == "-") {
        readFrom(io.in);
        return bytes;
    }
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec))
        throw dataError(path + ": cannot read: it is a folder");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw dataError(path + ": cannot read: " + systemError());
    readFrom(file);
    return bytes;
}

EDIDKit::EDID readEDID(const std::string& path, CliIO& io) {
    const EDIDKit::Bytes raw = readInput(path, io);
    try {
        return EDIDKit::EDID(EDIDKit::bytesFromEDIDInput(raw));
    } catch (const EDIDKit::EDIDTextError& error) {
        throw dataError(displayName(path) + ": not an EDID: " + error.what());
    } catch (const EDIDKit::EDIDError& error) {
        throw dataError(displayName(path) + ": not an EDID: " + error.description());
    }
}

void writeFileAtomically(const std::string& path, const std::string& content) {
    try {
        HalvoraPro::writeFileAtomically(path, content);
    } catch (const std::exception& error) {
        throw dataError(path + ": cannot write: " + error.what());
    }
}

void writeEDID(const EDIDKit::EDID& edid, const std::string* outPath, bool hex, CliIO& io) {
    const auto& bytes = edid.bytes();
    const std::string content = hex ? EDIDKit::hexDump(bytes) : std::string(bytes.begin(), bytes.end());
    if (outPath && *outPath != "-") {
        writeFileAtomically(*outPath, content);
        return;
    }
    if (!hex && io.outIsTerminal)
        throw usageError("not writing binary EDID data to a terminal; use -o FILE, --hex, or a pipe");
    io.out.write(content.data(), static_cast<std::streamsize>(content.size()));
    io.out.flush();
}

} // namespace Halvora
