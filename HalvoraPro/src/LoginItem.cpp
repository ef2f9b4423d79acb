#include <HalvoraPro/LoginItem.hpp>
#include <exception>

namespace HalvoraPro {

LoginItem::LoginItem(std::shared_ptr<LoginItemService> service,
                     std::shared_ptr<UserDefaults> defaults, HalvoraPlatform::LogSink log)
    : service_(std::move(service)), defaults_(std::move(defaults)), log_(std::move(log)) {}

bool LoginItem::isEnabled() const {
    const auto status = service_->status();
    return status == LoginItemService::Status::enabled ||
           status == LoginItemService::Status::requiresApproval;
}

bool LoginItem::setEnabled(bool on) {
    try {
        if (on)
            service_->registerApp();
        else
            service_->unregisterApp();
        return true;
    } catch (const std::exception& error) {
        if (log_)
            log_(std::string("Halvora Pro: login item ") + (on ? "register" : "unregister") +
                 " failed: " + error.what());
        return false;
    }
}

void LoginItem::enableByDefaultOnce() {
    if (defaults_->flag(UserDefaults::loginItemDefaultApplied)) return;
    if (setEnabled(true)) defaults_->setBool(UserDefaults::loginItemDefaultApplied, true);
}

} // namespace HalvoraPro
