#pragma once

#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraCore/SettingsStore.hpp>

#include <exception>
#include <functional>
#include <vector>

namespace TestDoubles {

/// Settings kept in memory; every save is recorded.
class MemorySettingsStore final : public HalvoraCore::SettingsStore {
public:
    explicit MemorySettingsStore(std::vector<HalvoraCore::DisplaySettings> initial = {}) : stored(std::move(initial)) {}

    std::vector<HalvoraCore::DisplaySettings> load() override { return stored; }
    void save(const std::vector<HalvoraCore::DisplaySettings>& settings) override {
        stored = settings;
        saves.push_back(settings);
        if (onSave) onSave(settings);
    }

    std::function<void(const std::vector<HalvoraCore::DisplaySettings>&)> onSave;

    std::vector<HalvoraCore::DisplaySettings> stored;
    std::vector<std::vector<HalvoraCore::DisplaySettings>> saves;
};

/// A conflict probe a test scripts: which tools are present, and whether a
/// take-over fails.
class ScriptedConflictProbe final : public HalvoraCore::ConflictProbe {
public:
    HalvoraCore::ConflictSet detect() override {
        ++detections;
        return present;
    }
    void takeOver(HalvoraCore::ConflictingTool tool) override {
        takeOvers.push_back(tool);
        if (failTakeOver) std::rethrow_exception(failTakeOver);
        present.erase(tool);
    }

    HalvoraCore::ConflictSet present;
    std::exception_ptr failTakeOver;
    int detections = 0;
    std::vector<HalvoraCore::ConflictingTool> takeOvers;
};

} // namespace TestDoubles
