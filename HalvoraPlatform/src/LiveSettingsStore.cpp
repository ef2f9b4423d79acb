#include <HalvoraCore/SettingsCoding.hpp>
#include <HalvoraPlatform/AtomicFile.hpp>
#include <HalvoraPlatform/FileReading.hpp>
#include <HalvoraPlatform/LiveSettingsStore.hpp>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace HalvoraPlatform {

namespace fs = std::filesystem;

namespace {

/// How many names a file that did not decode may try before it is left as it is.
constexpr int maxAsideAttempts = 1000;

long long secondsSince1970() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

SettingsTrouble::Reason readFailureReason(const FileReadError& error) {
    switch (error.reason()) {
    case FileReadError::Reason::folder:
        return SettingsTrouble::Reason::folder;
    case FileReadError::Reason::notRegular:
        return SettingsTrouble::Reason::notRegular;
    case FileReadError::Reason::tooLarge:
        return SettingsTrouble::Reason::tooLarge;
    case FileReadError::Reason::missing:
    case FileReadError::Reason::system:
        break;
    }
    return SettingsTrouble::Reason::other;
}

/// Renames `from` to `to` unless something is at `to` already; 0 or the errno.
/// A hard link fails on an existing name atomically; where the file system has
/// no hard links, the name is looked at first.
int renameWithoutReplacing(const fs::path& from, const fs::path& to) {
    if (::link(from.c_str(), to.c_str()) == 0) {
        if (::unlink(from.c_str()) == 0) return 0;
        const int error = errno;
        ::unlink(to.c_str());
        return error;
    }
    if (errno == EEXIST || errno == ENOENT || errno == EACCES || errno == EROFS) return errno;
    std::error_code exists;
    if (fs::exists(fs::symlink_status(to, exists))) return EEXIST;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

} // namespace

LiveSettingsStore::LiveSettingsStore(fs::path url, LogSink log, Clock clock)
    : url_(std::move(url)), log_(std::move(log)),
      clock_(clock ? std::move(clock) : Clock(secondsSince1970)) {}

LiveSettingsStore::HomeLookup LiveSettingsStore::HomeLookup::system() {
    return {[](const char* name) -> std::optional<std::string> {
                if (const char* value = std::getenv(name)) return std::string(value);
                return std::nullopt;
            },
            []() -> std::optional<std::string> {
                if (const passwd* account = ::getpwuid(::getuid()); account && account->pw_dir)
                    return std::string(account->pw_dir);
                return std::nullopt;
            }};
}

fs::path LiveSettingsStore::defaultURL(const HomeLookup& lookup) {
    const auto usable = [](const std::optional<std::string>& folder) {
        return folder && fs::path(*folder).is_absolute();
    };
    std::optional<std::string> home = lookup.environment("HOME");
    if (!usable(home)) home = lookup.accountHome();
    if (!usable(home))
        throw NoSettingsFolder(
            "Halvora Pro: cannot start: there is no Application Support folder for the "
            "settings (HOME is not set to a folder and the user account has no home folder)");
#if defined(__APPLE__)
    const fs::path base = fs::path(*home) / "Library" / "Application Support";
#else
    const auto dataHome = lookup.environment("XDG_DATA_HOME");
    const fs::path base =
        usable(dataHome) ? fs::path(*dataHome) : fs::path(*home) / ".local" / "share";
#endif
    return base / "Halvora Pro" / "displays.json";
}

fs::path LiveSettingsStore::defaultURLOrStop(const HomeLookup& lookup, const LogSink& log) {
    try {
        return defaultURL(lookup);
    } catch (const NoSettingsFolder& error) {
        log(error.what());
        std::fputs((std::string(error.what()) + "\n").c_str(), stderr);
        std::abort();
    }
}

fs::path LiveSettingsStore::folder() const {
    return url_.has_parent_path() ? url_.parent_path() : fs::path(".");
}

void LiveSettingsStore::holdFolder() {
    if (holdTried_) return;
    holdTried_ = true;
    // Settings that are not a regular file are never saved: nothing is put
    // beside them either (not even a lock file in /dev for /dev/null).
    struct stat info {};
    if (::stat(url_.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) return;
    try {
        lock_.emplace(folder());
    } catch (const SettingsFolderInUse&) {
        holdTried_ = false;
        throw;
    } catch (const SettingsFolderUnavailable& error) {
        log_("Halvora Pro: the settings folder cannot be held (" + std::string(error.what()) +
             "); settings will not be saved while Halvora Pro runs");
        // The user is told about the folder; the log names what failed in it.
        stopSaving({SettingsTrouble::Kind::savingOff, folder().string(), error.why(),
                    SettingsTrouble::Reason::other});
    }
}

void LiveSettingsStore::holdFolderOrStopSaving() {
    try {
        holdFolder();
    } catch (const SettingsFolderInUse& error) {
        holdTried_ = true;
        log_("Halvora Pro: " + std::string(error.what()) +
             "; settings will not be saved while Halvora Pro runs");
        stopSaving({SettingsTrouble::Kind::savingOff, error.folder().string(),
                    "another copy of Halvora Pro is using it",
                    SettingsTrouble::Reason::inUse});
    }
}

void LiveSettingsStore::stopSaving(SettingsTrouble trouble) {
    if (savingOff_) return; // the first reason is the one the user is told
    savingOff_ = true;
    status_->report(std::move(trouble));
}

std::vector<HalvoraCore::DisplaySettings> LiveSettingsStore::load() {
    holdFolderOrStopSaving();
    // A save killed half-way never replaced the file; what it left is litter,
    // unless another copy of the application is saving right now.
    if (lock_)
        if (const std::size_t unfinished = removeUnfinishedWrites(saveTarget()))
            log_("Halvora Pro: removed " + std::to_string(unfinished) +
                 " unfinished settings save(s)");
    std::string content;
    try {
        content = readWholeFile(url_, sizeLimit);
    } catch (const FileReadError& error) {
        if (error.reason() == FileReadError::Reason::missing) return {};
        // What cannot be read is left exactly as it is, and not written over.
        log_("Halvora Pro: settings not read (" + std::string(error.what()) +
             "); nothing restored, and settings will not be saved while Halvora Pro runs");
        stopSaving({SettingsTrouble::Kind::notRestored, url_.string(), error.why(),
                    readFailureReason(error),
                    error.reason() == FileReadError::Reason::tooLarge ? error.limit() : 0});
        return {};
    }
    HalvoraCore::ReadableSettings readable;
    try {
        readable = HalvoraCore::decodeReadableSettings(nlohmann::json::parse(content));
    } catch (const std::exception& error) {
        const std::string what =
            "Halvora Pro: settings unreadable (" + std::string(error.what()) + ")";
        const MovedAside moved = moveAside();
        if (moved.to) {
            log_(what + ", moved to " + moved.to->filename().string());
        } else {
            log_(what + ", left as it is (it cannot be moved aside: " + moved.why +
                 "); settings will not be saved while Halvora Pro runs");
            stopSaving({SettingsTrouble::Kind::notRestored, url_.string(), moved.why,
                        SettingsTrouble::Reason::other});
        }
        return {};
    }
    if (readable.dropped.empty()) return std::move(readable.records);
    // One bad record costs no other monitor its settings: the original file
    // is kept aside as it was, and the records that decode are saved afresh.
    for (const std::string& reason : readable.dropped)
        log_("Halvora Pro: settings record dropped (" + reason + ")");
    const std::string kept = std::to_string(readable.records.size()) + " of " +
                             std::to_string(readable.records.size() + readable.dropped.size()) +
                             " records kept";
    const MovedAside moved = moveAside();
    if (!moved.to) {
        // The file still holds the records that were dropped: never written over.
        log_("Halvora Pro: settings partly unreadable, left as it is (it cannot be moved aside: " +
             moved.why + "); " + kept + "; settings will not be saved while Halvora Pro runs");
        stopSaving(
            {SettingsTrouble::Kind::savingOff, url_.string(), moved.why, SettingsTrouble::Reason::other});
        return std::move(readable.records);
    }
    log_("Halvora Pro: settings partly unreadable, moved to " + moved.to->filename().string() +
         "; " + kept);
    save(readable.records);
    return std::move(readable.records);
}

LiveSettingsStore::MovedAside LiveSettingsStore::moveAside() const {
    if (!lock_) return {std::nullopt, "the settings folder is not held"};
    const fs::path from = saveTarget();
    const std::string stem = from.stem().string() + ".unreadable-" + std::to_string(clock_());
    for (int attempt = 1;; ++attempt) {
        const fs::path aside =
            from.parent_path() /
            (stem + (attempt == 1 ? "" : "-" + std::to_string(attempt)) + ".json");
        const int error = renameWithoutReplacing(from, aside);
        if (error == 0) return {aside, {}};
        if (error != EEXIST || attempt >= maxAsideAttempts)
            return {std::nullopt, std::strerror(error)};
    }
}

fs::path LiveSettingsStore::saveTarget() const {
    std::error_code error;
    if (!fs::is_symlink(url_, error)) return url_;
    // A link to the settings is kept, and the file it points to replaced (or
    // made, when the link points to nothing yet).
    if (const fs::path target = fs::canonical(url_, error); !error) return target;
    const fs::path linked = fs::read_symlink(url_, error);
    if (error) return url_;
    return linked.is_absolute() ? linked : folder() / linked;
}

void LiveSettingsStore::save(const std::vector<HalvoraCore::DisplaySettings>& settings) {
    holdFolderOrStopSaving();
    if (savingOff_) return;
    const fs::path target = saveTarget();
    struct stat info {};
    const bool exists = ::stat(target.c_str(), &info) == 0;
    if (exists && !S_ISREG(info.st_mode)) {
        if (S_ISDIR(info.st_mode))
            saveFailed("it is a folder", SettingsTrouble::Reason::folder);
        else
            saveFailed("it is not a regular file", SettingsTrouble::Reason::notRegular);
        return;
    }
    if (!lock_) {
        saveFailed("the settings folder is not held", SettingsTrouble::Reason::other);
        return;
    }
    // nlohmann::json keeps object keys sorted; indent 2 is the pretty form.
    const std::string content = HalvoraCore::encodeSettingsList(settings).dump(2) + "\n";
    if (content.size() > sizeLimit) {
        saveFailed("the settings would be larger than " + sizeInWords(sizeLimit),
                   SettingsTrouble::Reason::tooLarge);
        return;
    }
    try {
        // The file keeps the permissions the user gave it (0600, say).
        writeFileAtomically(target, content,
                            exists ? std::optional(static_cast<fs::perms>(info.st_mode & 07777))
                                   : std::nullopt);
    } catch (const std::exception& error) {
        saveFailed(error.what(), SettingsTrouble::Reason::other);
        return;
    }
    if (status_->trouble()) status_->report(std::nullopt);
}

void LiveSettingsStore::saveFailed(const std::string& why, SettingsTrouble::Reason reason) {
    log_("Halvora Pro: saving settings failed: " + url_.string() + ": " + why);
    status_->report(SettingsTrouble{SettingsTrouble::Kind::saveFailed, url_.string(), why, reason,
                                    reason == SettingsTrouble::Reason::tooLarge ? sizeLimit : 0});
}

} // namespace HalvoraPlatform
