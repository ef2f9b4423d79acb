#include "Files.hpp"

#include <EDIDKit/EDIDText.hpp>
#include <HalvoraPlatform/AtomicFile.hpp>
#include <HalvoraPlatform/FileReading.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace Halvora {

namespace {

std::string systemError() {
    return std::strerror(errno);
}

EDIDKit::Bytes readAtMost(std::istream& stream, const std::string& name) {
    EDIDKit::Bytes bytes;
    char buffer[4096];
    while (stream.read(buffer, sizeof buffer) || stream.gcount() > 0) {
        bytes.insert(bytes.end(), buffer, buffer + stream.gcount());
        if (bytes.size() > maxEDIDFileSize)
            throw dataError(name + ": not an EDID: more than " +
                            HalvoraPlatform::sizeInWords(maxEDIDFileSize) + " of data");
    }
    if (stream.bad()) throw dataError(name + ": cannot read: " + systemError());
    return bytes;
}

} // namespace

std::string displayName(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

EDIDKit::Bytes readFileInput(const std::filesystem::path& path) {
    // The one bounded reader of the settings store and the simulator: a
    // folder, device or socket is refused before it is opened, a pipe is read
    // (`<(…)`), and nothing is read past the limit.
    using HalvoraPlatform::FileReadError;
    try {
        const std::string content =
            HalvoraPlatform::readWholeFile(path, maxEDIDFileSize, HalvoraPlatform::Readable::regularFileOrPipe);
        return {content.begin(), content.end()};
    } catch (const FileReadError& error) {
        if (error.reason() == FileReadError::Reason::tooLarge)
            throw dataError(path.string() + ": not an EDID: more than " +
                            HalvoraPlatform::sizeInWords(maxEDIDFileSize) + " of data");
        if (error.reason() == FileReadError::Reason::missing)
            throw dataError(path.string() + ": cannot read: " + std::strerror(ENOENT));
        throw dataError(path.string() + ": cannot read: " + error.why());
    }
}

EDIDKit::Bytes readInput(const std::string& path, CliIO& io) {
    if (path == "-") return readAtMost(io.in, displayName(path));
    return readFileInput(path);
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

std::filesystem::path outputFile(const std::string& path) {
    namespace fs = std::filesystem;
    const auto refuse = [&](const std::string& what) {
        return usageError("not writing to " + path + ": " + what +
                          "; the output must be a new or regular file, or - for standard output");
    };
    if (path.ends_with('/')) throw refuse("it names a folder");
    // A symbolic link is followed to its end, so that the file it leads to is
    // replaced and the link stays.
    fs::path file = path;
    constexpr int maxLinks = 40;
    for (int links = 0;; ++links) {
        std::error_code error;
        const fs::file_status status = fs::symlink_status(file, error);
        if (error && status.type() != fs::file_type::not_found)
            throw dataError(path + ": cannot write: " + error.message());
        switch (status.type()) {
        case fs::file_type::not_found:
        case fs::file_type::regular:
            return file;
        case fs::file_type::symlink:
            // /dev/stdout, /dev/stderr and /dev/fd/N lead through /proc to
            // whatever a descriptor is open on: replacing that would throw
            // away what a shell redirection had already written there.
            if (const auto hop = file.lexically_normal().string();
                hop.starts_with("/dev/") || hop.starts_with("/proc/"))
                throw refuse("it leads to a device or an open descriptor");
            break;
        case fs::file_type::directory:
            throw refuse("it is a folder");
        case fs::file_type::block:
        case fs::file_type::character:
            throw refuse("it is a device");
        case fs::file_type::fifo:
            throw refuse("it is a FIFO (named pipe)");
        case fs::file_type::socket:
            throw refuse("it is a socket");
        default:
            throw refuse("it is not a regular file");
        }
        if (links == maxLinks) throw refuse("it is a loop of symbolic links");
        const fs::path target = fs::read_symlink(file, error);
        if (error) throw dataError(path + ": cannot write: " + error.message());
        file = target.is_absolute() ? target : file.parent_path() / target;
    }
}

void writeOutputFile(const std::string& path, const std::string& content) {
    const std::filesystem::path file = outputFile(path);
    std::error_code ignored;
    const auto status = std::filesystem::status(file, ignored);
    const auto permissions = std::filesystem::is_regular_file(status)
                                 ? std::optional<std::filesystem::perms>(status.permissions())
                                 : std::nullopt;
    try {
        HalvoraPlatform::writeFileAtomically(file, content, permissions);
    } catch (const std::exception& error) {
        throw dataError(path + ": cannot write: " + error.what());
    }
}

void writeEDID(const EDIDKit::EDID& edid, const std::string* outPath, bool hex, CliIO& io) {
    const auto& bytes = edid.bytes();
    const std::string content =
        hex ? EDIDKit::hexDump(bytes) : std::string(bytes.begin(), bytes.end());
    if (outPath && *outPath != "-") {
        writeOutputFile(*outPath, content);
        return;
    }
    if (!hex && io.outIsTerminal)
        throw usageError(
            "not writing binary EDID data to a terminal; use -o FILE, --hex, or a pipe");
    io.out.write(content.data(), static_cast<std::streamsize>(content.size()));
    io.out.flush();
}

} // namespace Halvora
