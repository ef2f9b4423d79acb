#pragma once

#include <EDIDKit/Resolution.hpp>
#include <HalvoraPro/Text.hpp>
#include <optional>
#include <vector>

namespace HalvoraPro {

/// What the identification window shows for the wizard's current step.
struct IdentificationContent {
    /// What a button of the window does.
    enum class Action { confirm, close, recheck, toggleDone, skip };

    struct Radio {
        Text label;
        /// The resolution it stands for; nothing for "none of these".
        std::optional<EDIDKit::Resolution> choice;
        bool on = false;
        friend bool operator==(const Radio&, const Radio&) = default;
    };

    struct Button {
        Text title;
        Action action = Action::close;
        friend bool operator==(const Button&, const Button&) = default;
    };

    Text windowTitle;
    Text heading;
    /// The step's wrapping text rows, in order.
    std::vector<Text> rows;
    std::vector<Radio> radios;
    /// Escape; shown left of the primary button.
    std::optional<Button> secondary;
    /// Return.
    Button primary;

    friend bool operator==(const IdentificationContent&, const IdentificationContent&) = default;
};

} // namespace HalvoraPro
