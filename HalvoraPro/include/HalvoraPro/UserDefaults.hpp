#pragma once

#include <optional>
#include <string>

namespace HalvoraPro {

/// The user's preferences that the shell keeps (the application's user
/// defaults on macOS): Booleans it writes, and texts the user may set.
class UserDefaults {
public:
    /// Keep the split EDIDs and modes in force when the application quits.
    static inline const std::string keepSettingsOnQuit = "keepSettingsOnQuit";
    /// The login item has been turned on once by default; never again.
    static inline const std::string loginItemDefaultApplied = "loginItemDefaultApplied";
    /// The launchd label of the other EDID override service, when the user
    /// runs it under another label than the build's (read at launch).
    static inline const std::string edidOverrideServiceLabel = "edidOverrideServiceLabel";

    virtual ~UserDefaults() = default;
    /// Nothing when the key was never written.
    virtual std::optional<bool> boolValue(const std::string& key) const = 0;
    virtual void setBool(const std::string& key, bool value) = 0;
    /// Nothing when the key was never written or does not hold text.
    virtual std::optional<std::string> stringValue(const std::string& key) const = 0;

    /// The value, with an absent key read as false.
    bool flag(const std::string& key) const { return boolValue(key).value_or(false); }
};

} // namespace HalvoraPro
