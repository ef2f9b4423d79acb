#pragma once

#include <HalvoraPlatform/SystemLog.hpp>
#include <HalvoraPro/UserDefaults.hpp>
#include <memory>

namespace HalvoraPro {

/// The system's record of the application as a login item (the main app's
/// service in ServiceManagement on macOS).
class LoginItemService {
public:
    enum class Status { notRegistered, enabled, requiresApproval, notFound };

    virtual ~LoginItemService() = default;
    virtual Status status() const = 0;
    /// Both throw on failure, with the platform's description as what().
    virtual void registerApp() = 0;
    virtual void unregisterApp() = 0;
    /// Opens the Login Items pane of System Settings.
    virtual void openSystemSettingsLoginItems() = 0;
};

/// Whether the application opens at login, and the rule that turns that on
/// once by default, after the first monitor has been identified.
class LoginItem {
public:
    LoginItem(std::shared_ptr<LoginItemService> service, std::shared_ptr<UserDefaults> defaults,
              HalvoraPlatform::LogSink log);

    /// On when enabled, and also while the user's approval is awaited.
    bool isEnabled() const;
    /// Registers or unregisters; a failure is logged and answered false.
    bool setEnabled(bool on);
    /// Turns the login item on the first time that succeeds, and never again.
    void enableByDefaultOnce();
    LoginItemService& service() { return *service_; }

private:
    std::shared_ptr<LoginItemService> service_;
    std::shared_ptr<UserDefaults> defaults_;
    HalvoraPlatform::LogSink log_;
};

} // namespace HalvoraPro
