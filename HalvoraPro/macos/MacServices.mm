// NSUserDefaults, SMAppService, the bundle's strings and its Info.plist.
// Sources: Apple's NSUserDefaults, NSBundle and SMAppService documentation;
// docs/macos-platform.md (login item statuses).

#include "MacServices.hpp"

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>
#include <HalvoraPro/LocalizedStrings.hpp>
#include <stdexcept>

namespace HalvoraPro::MacServices {

namespace {

NSString* ns(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

std::string utf8(NSString* text) {
    const char* bytes = text ? [text UTF8String] : nullptr;
    return bytes ? std::string(bytes) : std::string();
}

class MacUserDefaults final : public UserDefaults {
public:
    std::optional<bool> boolValue(const std::string& key) const override {
        NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
        if ([defaults objectForKey:ns(key)] == nil) return std::nullopt;
        return [defaults boolForKey:ns(key)] == YES;
    }
    void setBool(const std::string& key, bool value) override {
        [[NSUserDefaults standardUserDefaults] setBool:(value ? YES : NO) forKey:ns(key)];
    }
    std::optional<std::string> stringValue(const std::string& key) const override {
        id value = [[NSUserDefaults standardUserDefaults] objectForKey:ns(key)];
        if (![value isKindOfClass:[NSString class]]) return std::nullopt;
        return utf8(value);
    }
};

class MacLoginItemService final : public LoginItemService {
public:
    Status status() const override {
        switch ([SMAppService mainAppService].status) {
        case SMAppServiceStatusNotRegistered:
            return Status::notRegistered;
        case SMAppServiceStatusEnabled:
            return Status::enabled;
        case SMAppServiceStatusRequiresApproval:
            return Status::requiresApproval;
        case SMAppServiceStatusNotFound:
            break;
        }
        return Status::notFound;
    }
    void registerApp() override {
        NSError* error = nil;
        if (![[SMAppService mainAppService] registerAndReturnError:&error])
            throw std::runtime_error(utf8(error.localizedDescription));
    }
    void unregisterApp() override {
        NSError* error = nil;
        if (![[SMAppService mainAppService] unregisterAndReturnError:&error])
            throw std::runtime_error(utf8(error.localizedDescription));
    }
    void openSystemSettingsLoginItems() override { [SMAppService openSystemSettingsLoginItems]; }
};

} // namespace

std::shared_ptr<UserDefaults> userDefaults() { return std::make_shared<MacUserDefaults>(); }

std::shared_ptr<LoginItemService> loginItemService() { return std::make_shared<MacLoginItemService>(); }

std::function<std::string(const Text&)> localizer() {
    return [](const Text& text) -> std::string {
        if (text.verbatim) return *text.verbatim;
        // A key the bundle lacks comes back as itself: the built-in table answers then.
        NSString* key = ns(text.key);
        NSString* format = [[NSBundle mainBundle] localizedStringForKey:key value:key table:nil];
        const std::string found = utf8(format);
        if (found == text.key) return LocalizedStrings::english().resolve(text);
        return formatText(found, text.arguments);
    };
}

std::string overrideServiceLabel() {
    id label = [[NSBundle mainBundle] objectForInfoDictionaryKey:@"HalvoraEDIDOverrideServiceLabel"];
    return [label isKindOfClass:[NSString class]] ? utf8(label) : std::string();
}

} // namespace HalvoraPro::MacServices
