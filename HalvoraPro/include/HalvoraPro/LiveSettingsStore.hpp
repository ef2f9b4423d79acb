#pragma once

#include <HalvoraPro/SystemLog.hpp>

#include <HalvoraCore/SettingsStore.hpp>

#include <filesystem>
#include <functional>

namespace HalvoraPro {

/// The settings file, displays.json: a JSON array of the monitors' records,
/// pretty-printed with sorted keys, replaced atomically on every save. A file
/// that cannot be decoded is moved aside (displays.unreadable-SECONDS.json),
/// never lost and never overwritten.
class LiveSettingsStore final : public HalvoraCore::SettingsStore {
public:
    /// Seconds since 1970, for naming a file that was moved aside.
    using Clock = std::function<long long()>;

    explicit LiveSettingsStore(std::filesystem::path url, LogSink log = systemLog, Clock clock = {});

    /// The default location: "Halvora Pro/displays.json" in the user's
    /// Application Support folder on macOS, in $XDG_DATA_HOME (default
    /// ~/.local/share) elsewhere.
    static std::filesystem::path defaultURL();

    const std::filesystem::path& url() const { return url_; }

    std::vector<HalvoraCore::DisplaySettings> load() override;
    void save(const std::vector<HalvoraCore::DisplaySettings>& settings) override;

private:
    std::filesystem::path url_;
    LogSink log_;
    Clock clock_;
};

} // namespace HalvoraPro
