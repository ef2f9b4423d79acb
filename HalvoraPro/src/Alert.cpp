#include <HalvoraPro/Alert.hpp>

#include <HalvoraPlatform/FileReading.hpp>

namespace HalvoraPro {

using HalvoraCore::ConflictingTool;
using HalvoraPlatform::SettingsTrouble;

Alert conflictAlert(ConflictingTool tool) {
    if (tool == ConflictingTool::edidOverrideService)
        return {Text::localized("conflict.title"),
                Text::localized("conflict.edidOverride.body"),
                {Text::localized("conflict.takeOver"), Text::localized("conflict.later")}};
    return {Text::localized("conflict.title"),
            Text::localized("conflict.betterDisplay.body"),
            {Text::localized("conflict.ok")}};
}

Text conflictMenuTitle(ConflictingTool tool) {
    return Text::localized(tool == ConflictingTool::edidOverrideService
                               ? "conflict.menu.edidOverride"
                               : "conflict.menu.betterDisplay");
}

namespace {

const char* troubleName(SettingsTrouble::Kind kind) {
    switch (kind) {
    case SettingsTrouble::Kind::notRestored:
        return "notRestored";
    case SettingsTrouble::Kind::savingOff:
        return "savingOff";
    case SettingsTrouble::Kind::saveFailed:
        break;
    }
    return "saveFailed";
}

} // namespace

Alert settingsTroubleAlert(const SettingsTrouble& trouble, const std::string& reason) {
    const std::string name = troubleName(trouble.kind);
    return {Text::localized("settings." + name + ".title"),
            Text::localized("settings." + name + ".body", {trouble.path, reason}),
            {}};
}

Text settingsTroubleReason(const SettingsTrouble& trouble) {
    switch (trouble.reason) {
    case SettingsTrouble::Reason::folder:
        return Text::localized("settings.reason.folder");
    case SettingsTrouble::Reason::notRegular:
        return Text::localized("settings.reason.notRegular");
    case SettingsTrouble::Reason::tooLarge:
        return Text::localized("settings.reason.tooLarge", {HalvoraPlatform::sizeInWords(trouble.limit)});
    case SettingsTrouble::Reason::inUse:
        return Text::localized("settings.reason.inUse");
    case SettingsTrouble::Reason::other:
        break;
    }
    return Text::literal(trouble.why);
}

Text settingsTroubleMenuTitle(SettingsTrouble::Kind kind) {
    return Text::localized(std::string("settings.menu.") + troubleName(kind));
}

Alert settingsInUseAlert(const std::filesystem::path& folder) {
    return {Text::localized("settings.inUse.title"),
            Text::localized("settings.inUse.body", {folder.string()}),
            {}};
}

Alert errorAlert(const HalvoraCore::SplitError& error) {
    const auto message = HalvoraCore::errorMessage(error);
    std::vector<TextArgument> arguments;
    if (message.argument) arguments.emplace_back(*message.argument);
    // The alert's one default button carries the platform's own "OK".
    return {Text::localized("error.title"), Text::localized(message.key, std::move(arguments)), {}};
}

} // namespace HalvoraPro
