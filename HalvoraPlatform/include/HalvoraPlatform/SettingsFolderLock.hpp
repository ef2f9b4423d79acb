#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace HalvoraPlatform {

/// Another running copy of the application holds the settings folder.
class SettingsFolderInUse : public std::runtime_error {
public:
    explicit SettingsFolderInUse(std::filesystem::path folder);
    const std::filesystem::path& folder() const { return folder_; }

private:
    std::filesystem::path folder_;
};

/// The settings folder cannot be held: it cannot be made, or its lock file
/// cannot be opened or locked. `what()` is "PATH: why".
class SettingsFolderUnavailable : public std::runtime_error {
public:
    SettingsFolderUnavailable(std::filesystem::path path, std::string why);
    const std::filesystem::path& path() const { return path_; }
    const std::string& why() const { return why_; }

private:
    std::filesystem::path path_;
    std::string why_;
};

/// The settings folder held by this copy of the application: an advisory lock
/// (flock) on the file ".halvora-pro.lock" in it, held while the value lives
/// and released by the system however the process ends. Only the holder
/// writes the settings or removes what unfinished saves left; a second copy
/// is told the folder is in use. The descriptor is closed on exec, so a
/// program the application starts never holds it.
class SettingsFolderLock {
public:
    static constexpr const char* fileName = ".halvora-pro.lock";

    /// Creates the folder and the lock file as needed and takes the lock.
    /// Throws SettingsFolderInUse when another process holds it, and
    /// SettingsFolderUnavailable when it cannot be taken.
    explicit SettingsFolderLock(const std::filesystem::path& folder);
    ~SettingsFolderLock();
    SettingsFolderLock(SettingsFolderLock&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
    SettingsFolderLock& operator=(SettingsFolderLock&&) = delete;
    SettingsFolderLock(const SettingsFolderLock&) = delete;
    SettingsFolderLock& operator=(const SettingsFolderLock&) = delete;

private:
    int fd_ = -1;
};

} // namespace HalvoraPlatform
