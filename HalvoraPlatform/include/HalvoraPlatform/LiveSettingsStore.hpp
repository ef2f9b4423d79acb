#pragma once

#include <HalvoraCore/SettingsStore.hpp>
#include <HalvoraPlatform/SettingsFolderLock.hpp>
#include <HalvoraPlatform/SettingsStatus.hpp>
#include <HalvoraPlatform/SystemLog.hpp>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace HalvoraPlatform {

/// The folder for the settings file cannot be found: the application cannot
/// start. `what()` is the sentence for the log.
class NoSettingsFolder : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The settings file, displays.json: a JSON array of the monitors' records,
/// pretty-printed with sorted keys, replaced atomically on every save.
///
/// Only a regular file is ever read or replaced (a link to one is followed).
/// When the file is there but cannot be used (no permission, a folder, a
/// device, larger than `sizeLimit`) nothing is restored and nothing is saved
/// for the rest of the run, and the file is left as it is. Only a file that
/// was read and did not decode is moved aside, to
/// displays.unreadable-SECONDS.json (with "-2", "-3"… when that name is
/// taken: an earlier one is never replaced); when only some of its records do
/// not decode, the others are kept and saved again. A record whose sizes no
/// EDID can describe is dropped too.
///
/// The settings folder is held by one copy of the application at a time (a
/// SettingsFolderLock); saves and the clean-up of unfinished saves happen
/// only while it is held. `status()` tells what the user must know: the file
/// not restored, saving off, or a failed save until a save succeeds.
class LiveSettingsStore final : public HalvoraCore::SettingsStore {
public:
    /// Seconds since 1970, for naming a file that was moved aside.
    using Clock = std::function<long long()>;

    /// The largest settings file read or written. A record takes about 1 KiB
    /// (a few hundred with no override); this is room for thousands.
    static constexpr std::size_t sizeLimit = std::size_t{8} << 20;

    /// Nothing on disk is touched until the folder is held, loaded or saved.
    /// A bare file name lives in the current folder.
    explicit LiveSettingsStore(std::filesystem::path url, LogSink log = systemLog,
                               Clock clock = {});

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
    /// The folder the file lives in: the current folder for a bare file name.
    std::filesystem::path folder() const;
    /// What the user must know about the settings file; the menu watches it.
    const std::shared_ptr<SettingsStatus>& status() const { return status_; }
    /// Whether saves are written; false for the rest of the run once the file
    /// or the folder could not be used.
    bool isSaving() const { return !savingOff_; }

    /// Holds the settings folder for this copy of the application (done by the
    /// first load or save otherwise). Throws SettingsFolderInUse when another
    /// copy holds it; a folder that cannot be held otherwise turns saving off.
    void holdFolder();

    std::vector<HalvoraCore::DisplaySettings> load() override;
    void save(const std::vector<HalvoraCore::DisplaySettings>& settings) override;

private:
    /// Holds the folder if that was not tried yet; another copy holding it
    /// turns saving off.
    void holdFolderOrStopSaving();
    /// No save for the rest of the run; the user is told `trouble` once.
    void stopSaving(SettingsTrouble trouble);
    /// Moves the file that did not decode aside under a name never used
    /// before; the name, or why it could not be moved.
    struct MovedAside {
        std::optional<std::filesystem::path> to;
        std::string why;
    };
    MovedAside moveAside() const;
    /// Where a save writes: the file a link at `url` points to, else `url`.
    std::filesystem::path saveTarget() const;
    void saveFailed(const std::string& why, SettingsTrouble::Reason reason);

    std::filesystem::path url_;
    LogSink log_;
    Clock clock_;
    std::shared_ptr<SettingsStatus> status_ = std::make_shared<SettingsStatus>();
    std::optional<SettingsFolderLock> lock_;
    bool holdTried_ = false;
    bool savingOff_ = false;
};

} // namespace HalvoraPlatform
