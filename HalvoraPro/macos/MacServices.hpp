#pragma once

// The shell's services on a Mac: NSUserDefaults, the SMAppService login item,
// the bundle's string table, and the update framework. Built only on Apple
// platforms.

#include <HalvoraPro/LoginItem.hpp>
#include <HalvoraPro/Text.hpp>
#include <HalvoraPro/Updater.hpp>
#include <HalvoraPro/UserDefaults.hpp>

#include <functional>
#include <memory>
#include <string>

namespace HalvoraPro::MacServices {

/// The standard user defaults.
std::shared_ptr<UserDefaults> userDefaults();
/// SMAppService.mainAppService.
std::shared_ptr<LoginItemService> loginItemService();
/// A text in the user's language: the format from the main bundle's
/// Localizable.strings (the built-in English one when the bundle lacks the
/// key), filled by the portable formatText.
std::function<std::string(const Text&)> localizer();
/// The launchd label of the EDID override service, from the bundle's
/// Info.plist ("HalvoraEDIDOverrideServiceLabel"); empty when not set.
std::string overrideServiceLabel();

/// Sparkle 2's standard updater controller, started at once, with gentle
/// reminders handed to `updater` once it exists; in a build without Sparkle,
/// updates are off.
class UpdaterDriverFactory {
public:
    static std::shared_ptr<UpdaterDriver> make();
    /// Sends the framework's user-driver callbacks to the application's updater.
    static void attach(UpdaterDriver& driver, std::weak_ptr<Updater> updater);
};

} // namespace HalvoraPro::MacServices
