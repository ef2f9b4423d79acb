#include "Process.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace TestSupport {

bool isOnPath(const std::string& program) {
    const char* path = std::getenv("PATH");
    if (!path) return false;
    std::string_view rest(path);
    while (!rest.empty()) {
        const auto colon = rest.find(':');
        const std::filesystem::path folder(std::string(rest.substr(0, colon)));
        if (::access((folder / program).c_str(), X_OK) == 0) return true;
        if (colon == std::string_view::npos) break;
        rest.remove_prefix(colon + 1);
    }
    return false;
}

std::optional<ProcessResult> runProcess(const std::vector<std::string>& argv, const std::string& input) {
    int in[2], out[2], err[2];
    if (::pipe(in) != 0 || ::pipe(out) != 0 || ::pipe(err) != 0) return std::nullopt;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) posix_spawn_file_actions_addclose(&actions, fd);
    std::vector<char*> args;
    for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = 0;
    const int spawned = ::posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    ::close(err[1]);
    if (spawned != 0) {
        ::close(in[1]);
        ::close(out[0]);
        ::close(err[0]);
        return std::nullopt;
    }
    ProcessResult result;
    std::size_t written = 0;
    if (input.empty()) {
        ::close(in[1]);
        in[1] = -1;
    }
    std::array<pollfd, 3> fds{{{out[0], POLLIN, 0}, {err[0], POLLIN, 0}, {in[1], POLLOUT, 0}}};
    int open = 2 + (in[1] >= 0 ? 1 : 0);
    while (open > 0) {
        if (::poll(fds.data(), fds.size(), -1) < 0) {
            if (errno == EINTR) continue;
            break;
        }
        for (std::size_t i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
            char buffer[4096];
            const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
            if (n <= 0) {
                ::close(fds[i].fd);
                fds[i].fd = -1;
                --open;
            } else {
                (i == 0 ? result.output : result.errors).append(buffer, static_cast<std::size_t>(n));
            }
        }
        if (fds[2].fd >= 0 && (fds[2].revents & (POLLOUT | POLLERR | POLLHUP))) {
            const ssize_t n = ::write(fds[2].fd, input.data() + written, input.size() - written);
            if (n > 0) written += static_cast<std::size_t>(n);
            if (n <= 0 || written == input.size()) {
                ::close(fds[2].fd);
                fds[2].fd = -1;
                --open;
            }
        }
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

} // namespace TestSupport
