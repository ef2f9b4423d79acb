#pragma once

#include <memory>
#include <optional>
#include <string>

namespace HalvoraPro {

/// The update framework's controller as the shell uses it (Sparkle's
/// standard updater controller on macOS).
class UpdaterDriver {
public:
    virtual ~UpdaterDriver() = default;
    /// False in a build without the update framework: updates are off.
    virtual bool isAvailable() const { return true; }
    virtual bool canCheckForUpdates() const = 0;
    /// A check the user asked for: the framework shows its own window.
    virtual void checkForUpdates() = 0;
};

/// A build without the update framework: nothing is ever checked.
class UnavailableUpdaterDriver final : public UpdaterDriver {
public:
    bool isAvailable() const override { return false; }
    bool canCheckForUpdates() const override { return false; }
    void checkForUpdates() override {}
};

/// Lets the framework check on its own schedule with gentle reminders: an
/// update found while the application is not in focus is not popped up but
/// remembered, and the menu shows it until the user has looked at it.
class Updater {
public:
    explicit Updater(std::shared_ptr<UpdaterDriver> driver) : driver_(std::move(driver)) {}

    /// The version of an update a scheduled check found and did not show.
    const std::optional<std::string>& pendingVersion() const { return pendingVersion_; }
    bool isAvailable() const { return driver_->isAvailable(); }
    bool canCheckForUpdates() const { return driver_->isAvailable() && driver_->canCheckForUpdates(); }
    void checkForUpdates() { driver_->checkForUpdates(); }

    // The framework's user-driver delegate.
    bool supportsGentleScheduledUpdateReminders() const { return true; }
    /// The framework shows a scheduled update itself only in immediate focus.
    bool shouldHandleShowingScheduledUpdate(bool immediateFocus) const { return immediateFocus; }
    void willHandleShowingUpdate(bool handleShowing, const std::string& displayVersion) {
        if (!handleShowing) pendingVersion_ = displayVersion;
    }
    void didReceiveUserAttention() { pendingVersion_.reset(); }
    void willFinishUpdateSession() { pendingVersion_.reset(); }

private:
    std::shared_ptr<UpdaterDriver> driver_;
    std::optional<std::string> pendingVersion_;
};

} // namespace HalvoraPro
