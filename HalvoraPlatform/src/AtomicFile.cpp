#include <HalvoraPlatform/AtomicFile.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace HalvoraPlatform {

namespace {

std::string temporaryPrefix(const std::filesystem::path& path) {
    return "." + path.filename().string() + ".tmp-";
}

} // namespace

std::filesystem::path temporaryFileFor(const std::filesystem::path& path, const std::string& tag) {
    const std::filesystem::path folder =
        path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    return folder / (temporaryPrefix(path) + tag);
}

std::size_t removeUnfinishedWrites(const std::filesystem::path& path) {
    const std::filesystem::path folder =
        path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    const std::string prefix = temporaryPrefix(path);
    std::size_t removed = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
        const std::string name = it->path().filename().string();
        if (name.size() <= prefix.size() || name.compare(0, prefix.size(), prefix) != 0) continue;
        std::error_code ignored;
        if (std::filesystem::remove(it->path(), ignored)) ++removed;
    }
    return removed;
}

void writeFileAtomically(const std::filesystem::path& path, std::string_view content,
                         std::optional<std::filesystem::perms> permissions) {
    const std::filesystem::path folder =
        path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    std::random_device entropy;
    const std::filesystem::path temporary = temporaryFileFor(path, std::to_string(entropy()));
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) throw std::runtime_error(std::strerror(errno));
    const auto fail = [&](int error) {
        ::close(fd);
        ::unlink(temporary.c_str());
        throw std::runtime_error(std::strerror(error));
    };
    if (permissions &&
        ::fchmod(fd, static_cast<mode_t>(*permissions & std::filesystem::perms::mask)) != 0)
        fail(errno);
    for (std::size_t written = 0; written < content.size();) {
        const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
        if (n < 0) {
            if (errno == EINTR) continue;
            fail(errno);
        }
        written += static_cast<std::size_t>(n);
    }
    if (::fsync(fd) != 0) fail(errno);
    if (::close(fd) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        throw std::runtime_error(std::strerror(error));
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        throw std::runtime_error(std::strerror(error));
    }
}

} // namespace HalvoraPlatform
