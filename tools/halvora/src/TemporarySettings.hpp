#pragma once

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace Halvora {

/// A settings file that lives only as long as the run.
class TemporarySettings {
public:
    TemporarySettings() {
        std::random_device random;
        folder_ = std::filesystem::temp_directory_path() /
                  ("halvora-simulate-" + std::to_string(random()));
        std::filesystem::create_directories(folder_);
    }
    ~TemporarySettings() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    TemporarySettings(const TemporarySettings&) = delete;
    TemporarySettings& operator=(const TemporarySettings&) = delete;
    std::filesystem::path file() const { return folder_ / "displays.json"; }

private:
    std::filesystem::path folder_;
};

} // namespace Halvora
