#pragma once

#include <HalvoraPro/MenuItem.hpp>

#include <HalvoraPro/Alert.hpp>
#include <HalvoraPro/IdentificationContent.hpp>
#include <HalvoraPro/Text.hpp>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace HalvoraPro {

/// The application's two floating panels.
enum class PanelKind { confirmation, switchPrompt };

/// What a floating panel shows: icon, title, message, optionally a countdown
/// with its bar, and two buttons (cancel on Escape, default on Return).
struct PanelContent {
    std::string symbol;
    Text title;
    Text message;
    std::optional<Text> countdown;
    /// The bar's value, 1 down to 0.
    std::optional<double> progress;
    Text cancelButton;
    Text defaultButton;
    friend bool operator==(const PanelContent&, const PanelContent&) = default;
};

/// What the shell asks of the screen: AppKit on macOS, text in the simulator.
/// It draws and animates what it is given and forwards the user's clicks to
/// the shell's objects; it decides nothing.
class ShellView {
public:
    virtual ~ShellView() = default;

    virtual void activateApplication() = 0;

    /// Sets the panel's content, sizes it to fit and centres it on the
    /// built-in screen (or the main screen).
    virtual void renderPanel(PanelKind panel, const PanelContent& content) = 0;
    /// Orders the panel front at alpha 0 and animates it to 1 over 0.15 s; the
    /// confirmation panel also becomes the key window.
    virtual void fadeInPanel(PanelKind panel) = 0;
    /// Animates the alpha to 0 over 0.15 s, then calls `completed`.
    virtual void fadeOutPanel(PanelKind panel, std::function<void()> completed) = 0;
    virtual void orderOutPanel(PanelKind panel) = 0;

    /// Shows the identification window with this content, centred, key and in front.
    virtual void showIdentification(const IdentificationContent& content) = 0;
    virtual void closeIdentification() = 0;

    /// Replaces the items of the status menu while it is open; it stays open.
    virtual void updateOpenMenu(const Menu& menu) = 0;

    /// Runs a modal alert; `response` receives the index of the button chosen.
    virtual void runAlert(const Alert& alert, std::function<void(std::size_t button)> response) = 0;

    /// Ends the application.
    virtual void terminate() = 0;
};

} // namespace HalvoraPro
