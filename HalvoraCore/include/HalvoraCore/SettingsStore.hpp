#pragma once

#include <HalvoraCore/DisplaySettings.hpp>

#include <vector>

namespace HalvoraCore {

/// Where the settings live between launches.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    /// Everything saved; empty when nothing is saved or it cannot be read. Never fails.
    virtual std::vector<DisplaySettings> load() = 0;
    /// Replaces what is saved by the whole list. Never fails towards the caller.
    virtual void save(const std::vector<DisplaySettings>& settings) = 0;
};

} // namespace HalvoraCore
