#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace HalvoraPlatform {

/// Another application as this one may look at it: whether it runs, and its
/// preferences (CFPreferences of its domain, current user, any host).
class OtherApplication {
public:
    /// A preference value: absent, a boolean, text, or anything else.
    struct Other {
        friend bool operator==(Other, Other) { return true; }
    };
    using Value = std::variant<std::monostate, bool, std::string, Other>;

    virtual ~OtherApplication() = default;
    /// Some running application has this bundle identifier.
    virtual bool isRunning(const std::string& bundleID) = 0;
    /// CFPreferencesAppSynchronize.
    virtual void synchronize(const std::string& domain) = 0;
    /// CFPreferencesCopyKeyList; nothing when there is no list or it is not one of texts.
    virtual std::optional<std::vector<std::string>> keys(const std::string& domain) = 0;
    /// CFPreferencesCopyAppValue.
    virtual Value value(const std::string& key, const std::string& domain) = 0;
};

} // namespace HalvoraPlatform
