#pragma once

#include <cstddef>
#include <string>

namespace HalvoraPlatform {

/// Something the user must know about the settings file: what happened, where
/// and why. The store reports it; the shell tells the user.
struct SettingsTrouble {
    enum class Kind {
        /// The settings file is there but could not be used (no permission, a
        /// folder, a device, too large): nothing saved was restored, it is left
        /// as it is, and nothing is saved while the application runs.
        notRestored,
        /// The settings were read, but the settings folder cannot be held for
        /// this copy of the application: nothing is saved while it runs.
        savingOff,
        /// The last save failed; the next change tries again.
        saveFailed,
    };

    /// Why, as a fact; the shell puts it in the user's words.
    enum class Reason {
        folder,     ///< the path is a folder
        notRegular, ///< the path is a device, a pipe or a socket
        tooLarge,   ///< the file, or the settings to save, exceed `limit` bytes
        inUse,      ///< another copy of the application holds the settings folder
        other,      ///< the system's own words, in `why`
    };

    Kind kind = Kind::saveFailed;
    /// The file or folder concerned.
    std::string path;
    /// Why, in English ("it is a folder", "Permission denied"): for the log.
    std::string why;
    Reason reason = Reason::other;
    /// The size limit a `tooLarge` reason refers to, in bytes.
    std::size_t limit = 0;

    friend bool operator==(const SettingsTrouble&, const SettingsTrouble&) = default;
};

} // namespace HalvoraPlatform
