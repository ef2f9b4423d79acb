#pragma once

#include <HalvoraPro/Alert.hpp>
#include <HalvoraPro/IdentificationContent.hpp>
#include <HalvoraPro/MenuItem.hpp>
#include <HalvoraPro/Text.hpp>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace HalvoraPro {

/// The application's two floating panels.
enum class PanelKind { confirmation, switchPrompt };

/// A floating panel's two buttons.
enum class PanelButton {
    /// Escape: revert, or ignore the offer.
    cancel,
    /// Return: keep, or switch.
    accept,
};

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

/// What showing or changing a window does to the user's focus; Focus decides.
struct Presentation {
    /// The application comes to the front, taking it from the user's front application.
    bool activatesApplication = false;
    /// The window takes the keyboard (becomes the key window).
    bool becomesKey = false;
    /// The window moves to the middle of its screen.
    bool centres = false;
    /// The window is ordered in front of the others.
    bool ordersFront = false;

    /// A change of content: the window stays where it is and as it is.
    static constexpr Presentation inPlace() { return {}; }
    friend bool operator==(const Presentation&, const Presentation&) = default;
};

/// What the shell asks of the screen: AppKit on macOS, text in the simulator.
/// It draws and animates what it is given and forwards the user's clicks to
/// the shell's objects; it decides nothing.
class ShellView {
public:
    virtual ~ShellView() = default;

    virtual void activateApplication() = 0;

    /// Sets the panel's content and sizes it to fit, keeping its top edge
    /// where it is; it does not move otherwise.
    virtual void renderPanel(PanelKind panel, const PanelContent& content) = 0;
    /// Orders the panel front at alpha 0 and animates it to 1 over 0.15 s,
    /// centred on the built-in screen (or the main screen) and made key as
    /// `how` says.
    virtual void fadeInPanel(PanelKind panel, const Presentation& how) = 0;
    /// Animates the alpha to 0 over 0.15 s, then calls `completed`.
    virtual void fadeOutPanel(PanelKind panel, std::function<void()> completed) = 0;
    virtual void orderOutPanel(PanelKind panel) = 0;

    /// Shows this content in the identification window (created on first
    /// use), sized to fit with its top edge kept, then activates, centres,
    /// orders front and makes key as `how` says, and nothing more.
    virtual void showIdentification(const IdentificationContent& content,
                                    const Presentation& how) = 0;
    virtual void closeIdentification() = 0;

    /// Replaces the items of the status menu while it is open; it stays open.
    virtual void updateOpenMenu(const Menu& menu) = 0;

    /// Runs a modal alert; `response` receives the index of the button chosen.
    virtual void runAlert(const Alert& alert, std::function<void(std::size_t button)> response) = 0;

    /// Ends the application.
    virtual void terminate() = 0;
};

} // namespace HalvoraPro
