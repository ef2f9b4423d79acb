#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace Halvora {

/// The application's windows, as the self-test looks for them on a screen.
enum class ShownWindow { confirmationPanel, switchPrompt, identificationWindow, alert };

/// "confirmation-panel", "switch-prompt", "identification-window", "alert".
std::string fileNameOf(ShownWindow window);
/// "the confirmation panel", …
std::string descriptionOf(ShownWindow window);

/// A real screen that the application's views draw on (AppKit in the
/// self-test): which windows it shows, and their pictures.
class Screen {
public:
    virtual ~Screen() = default;
    /// Lets the views catch up (layout, drawing, animations) before they are looked at.
    virtual void settle() = 0;
    /// The panels and the identification window visible now. Alerts are left
    /// out: the self-test draws each one but never runs it.
    virtual std::set<ShownWindow> visibleWindows() const = 0;
    /// Writes the window's picture as a PNG file; false when it could not.
    virtual bool capture(ShownWindow window, const std::filesystem::path& png) = 0;
};

} // namespace Halvora
