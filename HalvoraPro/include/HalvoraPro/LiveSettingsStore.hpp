#pragma once

#include <HalvoraPro/SystemLog.hpp>

#include <HalvoraCore/SettingsStore.hpp>

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace HalvoraPro {

/// The folder for the settings file cannot be found: the application cannot
/// start. `what()` is the sentence for the log.
class NoSettingsFolder : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The settings file, displays.json: a JSON array of the monitors' records,
/// pretty-printed with sorted keys, replaced atomically on every save. A file
/// that cannot be decoded is moved aside (displays.unreadable-SECONDS.json),
/// never lost and never overwritten; when only some of its records cannot be
/// decoded, the others are kept and saved again.
class LiveSettingsStore final : public HalvoraCore::SettingsStore {
public:
    /// Seconds since 1970, for naming a file that was moved aside.
    using Clock = std::function<long long()>;

    explicit LiveSettingsStore(std::filesystem::path url, LogSink log = systemLog, Clock clock = {});

    /// How the user's home folder is found: the environment, then the user
    /// account database (as the platform's file manager does).
    struct HomeLookup {
        std::function<std::optional<std::string>(const char* name)> environment;
        std::function<std::optional<std::string>()> accountHome;
        /// getenv and the password database.
        static HomeLookup system();
    };

    /// The default location: "Halvora Pro/displays.json" in the user's
    /// Application Support folder on macOS, in $XDG_DATA_HOME (default
    /// ~/.local/share) elsewhere. Without a home folder (no absolute HOME and
    /// none in the account database) there is no such folder: throws
    /// NoSettingsFolder. There is no fallback location.
    static std::filesystem::path defaultURL(const HomeLookup& lookup = HomeLookup::system());
    /// At start-up: the default location, or a fatal stop, logged and printed,
    /// before anything else happens.
    static std::filesystem::path defaultURLOrStop(const HomeLookup& lookup = HomeLookup::system(),
                                                  const LogSink& log = systemLog);

    const std::filesystem::path& url() const { return url_; }

    std::vector<HalvoraCore::DisplaySettings> load() override;
    void save(const std::vector<HalvoraCore::DisplaySettings>& settings) override;

private:
    /// Renames the file to displays.unreadable-SECONDS.json beside it (a
    /// failure is ignored) and returns that name.
    std::filesystem::path moveAside() const;

    std::filesystem::path url_;
    LogSink log_;
    Clock clock_;
};

} // namespace HalvoraPro
