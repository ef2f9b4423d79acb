#include <HalvoraPlatform/FileReading.hpp>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace HalvoraPlatform {

namespace {

std::string whyFor(FileReadError::Reason reason, const std::string& detail, std::size_t limit) {
    switch (reason) {
    case FileReadError::Reason::missing:
        return "there is no such file";
    case FileReadError::Reason::folder:
        return "it is a folder";
    case FileReadError::Reason::notRegular:
        return "it is not a regular file";
    case FileReadError::Reason::tooLarge:
        return "it is larger than " + sizeInWords(limit);
    case FileReadError::Reason::system:
        break;
    }
    return detail;
}

[[noreturn]] void refuse(FileReadError::Reason reason, const std::filesystem::path& path,
                         std::size_t limit = 0) {
    throw FileReadError(reason, path, {}, limit);
}

[[noreturn]] void refuseWithErrno(const std::filesystem::path& path, int error) {
    if (error == ENOENT) refuse(FileReadError::Reason::missing, path);
    if (error == EISDIR) refuse(FileReadError::Reason::folder, path);
    throw FileReadError(FileReadError::Reason::system, path, std::strerror(error));
}

/// Refuses what `readable` does not allow, by its type.
void checkType(const struct stat& info, const std::filesystem::path& path, Readable readable) {
    if (S_ISREG(info.st_mode)) return;
    if (S_ISDIR(info.st_mode)) refuse(FileReadError::Reason::folder, path);
    if (S_ISFIFO(info.st_mode) && readable == Readable::regularFileOrPipe) return;
    refuse(FileReadError::Reason::notRegular, path);
}

/// Closes the descriptor however the read ends.
struct Descriptor {
    int fd;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
};

} // namespace

FileReadError::FileReadError(Reason reason, std::filesystem::path path, std::string detail,
                             std::size_t limit)
    : std::runtime_error(path.string() + ": " + whyFor(reason, detail, limit)), reason_(reason),
      path_(std::move(path)), why_(whyFor(reason, detail, limit)), limit_(limit) {}

std::string sizeInWords(std::size_t bytes) {
    if (bytes >= (1u << 20) && bytes % (1u << 20) == 0) return std::to_string(bytes >> 20) + " MiB";
    if (bytes >= (1u << 10) && bytes % (1u << 10) == 0) return std::to_string(bytes >> 10) + " KiB";
    return std::to_string(bytes) + " bytes";
}

std::string readWholeFile(const std::filesystem::path& path, std::size_t limit, Readable readable) {
    // Looked at before it is opened: opening a pipe waits for a writer, and a
    // device may do something when opened.
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) refuseWithErrno(path, errno);
    checkType(info, path, readable);
    if (S_ISREG(info.st_mode) && static_cast<std::uintmax_t>(info.st_size) > limit)
        refuse(FileReadError::Reason::tooLarge, path, limit);
    // Without O_NONBLOCK only where a pipe is allowed: a regular file put in
    // its place since is then opened without waiting.
    const int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY | (S_ISFIFO(info.st_mode) ? 0 : O_NONBLOCK);
    const Descriptor file{::open(path.c_str(), flags)};
    if (file.fd < 0) refuseWithErrno(path, errno);
    if (::fstat(file.fd, &info) != 0) refuseWithErrno(path, errno);
    checkType(info, path, readable);

    std::string content;
    char buffer[16384];
    for (;;) {
        const ssize_t n = ::read(file.fd, buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR) continue;
            refuseWithErrno(path, errno);
        }
        if (n == 0) break;
        // The file may have grown since it was looked at: never past the limit.
        if (content.size() + static_cast<std::size_t>(n) > limit)
            refuse(FileReadError::Reason::tooLarge, path, limit);
        content.append(buffer, static_cast<std::size_t>(n));
    }
    return content;
}

} // namespace HalvoraPlatform
