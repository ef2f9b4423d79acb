#pragma once

#include <HalvoraCore/SettingsStore.hpp>

#include <functional>
#include <vector>

namespace TestDoubles {

/// Settings kept in memory; every save is recorded.
class MemorySettingsStore final : public HalvoraCore::SettingsStore {
public:
    explicit MemorySettingsStore(std::vector<HalvoraCore::DisplaySettings> initial = {}) : stored(std::move(initial)) {}

    std::vector<HalvoraCore::DisplaySettings> load() override {
        ++loads;
        return stored;
    }
    void save(const std::vector<HalvoraCore::DisplaySettings>& settings) override {
        stored = settings;
        saves.push_back(settings);
        if (onSave) onSave(settings);
    }

    std::function<void(const std::vector<HalvoraCore::DisplaySettings>&)> onSave;

    std::vector<HalvoraCore::DisplaySettings> stored;
    int loads = 0;
    std::vector<std::vector<HalvoraCore::DisplaySettings>> saves;
};

} // namespace TestDoubles
