#include <HalvoraPro/Alert.hpp>

namespace HalvoraPro {

using HalvoraCore::ConflictingTool;

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

Alert errorAlert(const HalvoraCore::SplitError& error) {
    const auto message = HalvoraCore::errorMessage(error);
    std::vector<TextArgument> arguments;
    if (message.argument) arguments.emplace_back(*message.argument);
    // The alert's one default button carries the platform's own "OK".
    return {Text::localized("error.title"), Text::localized(message.key, std::move(arguments)), {}};
}

} // namespace HalvoraPro
