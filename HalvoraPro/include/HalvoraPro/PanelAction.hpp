#pragma once

#include <optional>
#include <string_view>

namespace HalvoraPro {

/// The two answers a floating panel offers: its default action, on Return,
/// and its cancel action, on Escape. The view gives each button the key of
/// its action and hands the action back when the button is pressed; what an
/// action does is the panel's (ConfirmationPanel::perform).
enum class PanelAction { defaultAction, cancelAction };

/// The key that triggers `action`, as a button's key equivalent: Return for
/// the default action, Escape for the cancel action.
inline std::string_view keyEquivalent(PanelAction action) {
    return action == PanelAction::defaultAction ? "\r" : "\x1b";
}

/// The action a key triggers; nothing for any other key.
inline std::optional<PanelAction> panelActionForKey(std::string_view key) {
    for (const auto action : {PanelAction::defaultAction, PanelAction::cancelAction})
        if (key == keyEquivalent(action)) return action;
    return std::nullopt;
}

} // namespace HalvoraPro
