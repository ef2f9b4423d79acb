#include <HalvoraPlatform/PosixProcessSpawner.hpp>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace HalvoraPlatform {

std::optional<int> PosixProcessSpawner::spawn(const std::string& path,
                                              const std::vector<std::string>& arguments) {
    std::vector<std::string> owned = arguments; // argv wants mutable strings
    std::vector<char*> argv;
    for (auto& a : owned)
        argv.push_back(a.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0) return std::nullopt;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int failed = posix_spawn(&process, path.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) return std::nullopt;
    return static_cast<int>(process);
}

std::optional<ProcessSpawner::Ending> PosixProcessSpawner::poll(int process) {
    int status = 0;
    pid_t ended = 0;
    do {
        ended = waitpid(process, &status, WNOHANG);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0) return std::nullopt;
    if (ended < 0) return Ending{true, 0}; // not ours to wait for any more: it has ended
    if (WIFSIGNALED(status)) return Ending{true, WTERMSIG(status)};
    return Ending{false, WEXITSTATUS(status)};
}

void PosixProcessSpawner::killAndReap(int process) {
    kill(process, SIGKILL);
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
}

void PosixProcessSpawner::sleepMilliseconds(int milliseconds) {
    timespec wanted{milliseconds / 1000, static_cast<long>(milliseconds % 1000) * 1000000L};
    while (nanosleep(&wanted, &wanted) != 0 && errno == EINTR) {
    }
}

} // namespace HalvoraPlatform
