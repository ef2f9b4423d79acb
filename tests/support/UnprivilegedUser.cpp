#include "UnprivilegedUser.hpp"

#include <grp.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace TestSupport {

std::optional<std::string> runAsUnprivilegedUser(const std::function<std::string()>& check) {
    int channel[2];
    if (::pipe(channel) != 0) return std::nullopt;
    const pid_t child = ::fork();
    if (child < 0) return std::nullopt;
    if (child == 0) {
        ::close(channel[0]);
        if (::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setgid(unprivilegedUserID) != 0 ||
             ::setuid(unprivilegedUserID) != 0 || ::getuid() == 0))
            ::_exit(3); // cannot become anybody else here
        std::string found = check();
        if (found.empty()) found = "ok";
        const char* at = found.data();
        for (std::size_t left = found.size(); left > 0;) {
            const ssize_t n = ::write(channel[1], at, left);
            if (n <= 0) break;
            at += n;
            left -= static_cast<std::size_t>(n);
        }
        ::_exit(0);
    }
    ::close(channel[1]);
    std::string said;
    char buffer[512];
    for (ssize_t n; (n = ::read(channel[0], buffer, sizeof buffer)) > 0;)
        said.append(buffer, static_cast<std::size_t>(n));
    ::close(channel[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 3 && said.empty()) return std::nullopt;
    if (said == "ok") return std::string();
    return said.empty() ? std::string("the check died") : said;
}

void shareWithUnprivilegedUser(const std::filesystem::path& folder) {
    if (::geteuid() == 0 && ::chown(folder.c_str(), unprivilegedUserID, unprivilegedUserID) != 0)
        return;
    std::filesystem::permissions(
        folder, std::filesystem::perms::owner_all | std::filesystem::perms::group_read |
                    std::filesystem::perms::group_exec | std::filesystem::perms::others_read |
                    std::filesystem::perms::others_exec);
}

} // namespace TestSupport
