#pragma once

#include <HalvoraPro/Text.hpp>
#include <string>

namespace HalvoraPro {

/// Something the user must know about the settings file: what happened, where,
/// and why in the system's words.
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

    Kind kind = Kind::saveFailed;
    /// The file or folder concerned.
    std::string path;
    /// Why, in English ("it is a folder", "Permission denied"): for the log.
    std::string why;
    /// Why, as the user is told: a localized reason ("settings.reason.*"),
    /// or the system's own words as they are.
    Text reason;

    friend bool operator==(const SettingsTrouble&, const SettingsTrouble&) = default;
};

} // namespace HalvoraPro
