#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace HalvoraPlatform {

/// A file that was not read, and why. `what()` is "PATH: why" in English, for
/// messages and the log.
class FileReadError : public std::runtime_error {
public:
    enum class Reason {
        missing,    ///< nothing is there
        folder,     ///< a folder is there
        notRegular, ///< a device, socket or (where pipes are refused) a pipe
        tooLarge,   ///< more than the limit
        system,     ///< the system refused (no permission, an I/O error…): `detail` says why
    };

    FileReadError(Reason reason, std::filesystem::path path, std::string detail,
                  std::size_t limit = 0);

    Reason reason() const { return reason_; }
    const std::filesystem::path& path() const { return path_; }
    /// Why, without the path: "it is a folder", "Permission denied"…
    const std::string& why() const { return why_; }
    /// The limit a file was larger than (tooLarge only).
    std::size_t limit() const { return limit_; }

private:
    Reason reason_;
    std::filesystem::path path_;
    std::string why_;
    std::size_t limit_;
};

/// What may be read besides a regular file.
enum class Readable {
    regularFile,      ///< nothing else: a pipe is refused without being opened
    regularFileOrPipe ///< a pipe too (`<(…)`, /dev/stdin on a pipe), read up to the limit
};

/// The whole content of the file at `path` (a symbolic link is followed), of at
/// most `limit` bytes. A folder, a device or a socket is refused before it is
/// opened, so nothing waits on it and nothing is read without end; more than
/// `limit` bytes is refused without reading past the limit. Throws FileReadError.
std::string readWholeFile(const std::filesystem::path& path, std::size_t limit,
                          Readable readable = Readable::regularFile);

/// "1 MiB", "64 KiB", "100 bytes": a limit in words, for messages.
std::string sizeInWords(std::size_t bytes);

} // namespace HalvoraPlatform
