#pragma once

#include <HalvoraPlatform/seams/ProcessSpawner.hpp>
#include <deque>
#include <string>
#include <vector>

namespace TestDoubles {

/// A process spawner whose processes end as a test scripts them: each spawn
/// takes the next scripted run (or the default), which ends after a number of
/// polls with an exit code or a signal, or never. Sleeps advance a virtual
/// time instead of waiting.
class ScriptedProcessSpawner final : public HalvoraPlatform::ProcessSpawner {
public:
    struct Script {
        bool starts = true;
        int pollsUntilEnd = 0; ///< -1: it never ends by itself
        Ending ending{};
    };

    std::deque<Script> next;
    Script byDefault{};
    /// Every spawn's arguments, joined by spaces.
    std::vector<std::string> spawned;
    int polls = 0;
    int kills = 0;
    long sleptMilliseconds = 0;

    std::optional<int> spawn(const std::string&,
                             const std::vector<std::string>& arguments) override {
        std::string line;
        for (const auto& a : arguments)
            line += (line.empty() ? "" : " ") + a;
        spawned.push_back(line);
        Script s = byDefault;
        if (!next.empty()) {
            s = next.front();
            next.pop_front();
        }
        if (!s.starts) return std::nullopt;
        running_ = s;
        return static_cast<int>(spawned.size());
    }
    std::optional<Ending> poll(int) override {
        ++polls;
        if (running_.pollsUntilEnd < 0) return std::nullopt;
        if (running_.pollsUntilEnd-- > 0) return std::nullopt;
        return running_.ending;
    }
    void killAndReap(int) override { ++kills; }
    void sleepMilliseconds(int milliseconds) override { sleptMilliseconds += milliseconds; }

private:
    Script running_{};
};

} // namespace TestDoubles
