#pragma once

#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <HalvoraPlatform/SettingsTrouble.hpp>
#include <HalvoraPro/Text.hpp>
#include <filesystem>
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
/// The alert about the settings file: not restored, not being saved, or a
/// save that failed; it names the path and the reason (`reason`: the
/// trouble's reason in the user's words).
Alert settingsTroubleAlert(const HalvoraPlatform::SettingsTrouble& trouble, const std::string& reason);
/// The menu row that stays while the trouble lasts and leads to that alert.
Text settingsTroubleMenuTitle(HalvoraPlatform::SettingsTrouble::Kind kind);
/// Why the settings file is in trouble, in the user's words.
Text settingsTroubleReason(const HalvoraPlatform::SettingsTrouble& trouble);
/// A second copy of the application was started on the same settings folder:
/// it says so and quits.
Alert settingsInUseAlert(const std::filesystem::path& folder);
/// The one alert for every failed operation.
Alert errorAlert(const HalvoraCore::SplitError& error);

} // namespace HalvoraPro
