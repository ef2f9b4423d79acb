#pragma once

#include <HalvoraPlatform/SettingsTrouble.hpp>
#include <functional>
#include <optional>

namespace HalvoraPlatform {

/// The settings file's trouble, if any, as the store last found it; the menu
/// watches it.
class SettingsStatus {
public:
    const std::optional<SettingsTrouble>& trouble() const { return trouble_; }
    /// Records what the store found; `onChange` hears of every change.
    void report(std::optional<SettingsTrouble> trouble) {
        if (trouble == trouble_) return;
        trouble_ = std::move(trouble);
        if (onChange) onChange();
    }
    std::function<void()> onChange;

private:
    std::optional<SettingsTrouble> trouble_;
};

} // namespace HalvoraPlatform
