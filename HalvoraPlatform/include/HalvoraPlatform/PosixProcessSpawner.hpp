#pragma once

#include <HalvoraPlatform/seams/ProcessSpawner.hpp>

namespace HalvoraPlatform {

/// ProcessSpawner over the POSIX calls themselves (posix_spawn, waitpid,
/// kill, nanosleep), on Linux and macOS alike.
class PosixProcessSpawner final : public ProcessSpawner {
public:
    std::optional<int> spawn(const std::string& path,
                             const std::vector<std::string>& arguments) override;
    std::optional<Ending> poll(int process) override;
    void killAndReap(int process) override;
    void sleepMilliseconds(int milliseconds) override;
};

} // namespace HalvoraPlatform
