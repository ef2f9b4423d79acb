#pragma once

#include <HalvoraPlatform/seams/ProcessSpawner.hpp>
#include <memory>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// Runs launchctl and never hangs: spawned directly (no shell) with its output
/// thrown away, polled without blocking 600 times 5 ms apart (about 3 s), and
/// killed when it has not ended by then.
class Launchctl {
public:
    static inline const std::string defaultPath = "/bin/launchctl";
    static constexpr int polls = 600;
    static constexpr int pollMilliseconds = 5;

    explicit Launchctl(std::shared_ptr<HalvoraPlatform::ProcessSpawner> spawner,
                       std::string path = defaultPath);

    /// The exit code; -1 when it could not start, was ended by a signal, or
    /// ran out of time (and was killed).
    int run(const std::vector<std::string>& arguments) const;

    HalvoraPlatform::ProcessSpawner& spawner() const { return *spawner_; }

private:
    std::shared_ptr<HalvoraPlatform::ProcessSpawner> spawner_;
    std::string path_;
};

} // namespace HalvoraPlatform
