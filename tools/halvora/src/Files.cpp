#include "Files.hpp"

#include <EDIDKit/EDIDText.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>

#include <fcntl.h>
#include <unistd.h>

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
    namespace fs = std::filesystem;
    const fs::path target(path);
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    std::random_device entropy;
    const fs::path temporary =
        folder / ("." + target.filename().string() + ".tmp-" + std::to_string(entropy()));
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) throw dataError(path + ": cannot write: " + systemError());
    const auto fail = [&](const std::string& why) {
        ::close(fd);
        ::unlink(temporary.c_str());
        throw dataError(path + ": cannot write: " + why);
    };
    std::size_t written = 0;
    while (written < content.size()) {
        const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
        if (n < 0) {
            if (errno == EINTR) continue;
            fail(systemError());
        }
        written += static_cast<std::size_t>(n);
    }
    if (::fsync(fd) != 0) fail(systemError());
    if (::close(fd) != 0) {
        ::unlink(temporary.c_str());
        throw dataError(path + ": cannot write: " + systemError());
    }
    if (std::rename(temporary.c_str(), target.c_str()) != 0) {
        const std::string why = systemError();
        ::unlink(temporary.c_str());
        throw dataError(path + ": cannot write: " + why);
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
