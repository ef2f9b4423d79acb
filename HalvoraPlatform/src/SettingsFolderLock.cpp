#include <HalvoraPlatform/SettingsFolderLock.hpp>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace HalvoraPlatform {

namespace fs = std::filesystem;

SettingsFolderInUse::SettingsFolderInUse(fs::path folder)
    : std::runtime_error(folder.string() + ": another copy of Halvora Pro is using this folder"),
      folder_(std::move(folder)) {}

SettingsFolderUnavailable::SettingsFolderUnavailable(fs::path path, std::string why)
    : std::runtime_error(path.string() + ": " + why), path_(std::move(path)), why_(std::move(why)) {
}

SettingsFolderLock::SettingsFolderLock(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw SettingsFolderUnavailable(folder, error.message());
    const fs::path file = folder / fileName;
    const auto fail = [&](std::string why) {
        if (fd_ >= 0) ::close(fd_);
        fd_ = -1;
        throw SettingsFolderUnavailable(file, std::move(why));
    };
    // Never follows a link and never waits on a pipe put in its place.
    fd_ = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY,
                 0644);
    if (fd_ < 0) fail(std::strerror(errno));
    struct stat info {};
    if (::fstat(fd_, &info) != 0) fail(std::strerror(errno));
    if (!S_ISREG(info.st_mode)) fail("it is not a regular file");
    while (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) fail(std::strerror(errno));
        ::close(fd_);
        fd_ = -1;
        throw SettingsFolderInUse(folder);
    }
}

SettingsFolderLock::~SettingsFolderLock() {
    if (fd_ >= 0) ::close(fd_);
}

} // namespace HalvoraPlatform
