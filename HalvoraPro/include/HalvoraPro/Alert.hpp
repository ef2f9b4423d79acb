#pragma once

#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <HalvoraPro/Text.hpp>
#include <vector>

namespace HalvoraPro {

/// A modal alert: its message, informative text and buttons, the first one
/// being the default.
struct Alert {
    Text title;
    Text message;
    std::vector<Text> buttons;
    friend bool operator==(const Alert&, const Alert&) = default;
};

/// The alert about another tool that writes override EDIDs. The override
/// service's offers "take over" (first) and "later"; BetterDisplay's only informs.
Alert conflictAlert(HalvoraCore::ConflictingTool tool);
/// The menu row that leads to that alert.
Text conflictMenuTitle(HalvoraCore::ConflictingTool tool);
/// The one alert for every failed operation.
Alert errorAlert(const HalvoraCore::SplitError& error);

} // namespace HalvoraPro
