#pragma once

#include <HalvoraPro/ShellView.hpp>
#include <optional>
#include <string>

namespace HalvoraPro {

/// The shell's windows that can hold the keyboard.
enum class ShellWindow { identification, confirmationPanel, switchPrompt };

/// The shell's focus rules, and the window it has handed the keyboard to.
///
/// Halvora Pro is an accessory application: the user is nearly always
/// working in another application when one of its windows appears. So:
/// - The identification window, on its first show, activates the
///   application, becomes key and is centred; every later change of its
///   content happens in place: it neither moves, nor activates, nor takes
///   the keyboard back (the confirmation panel may hold it).
/// - The confirmation panel is key while it is shown, without activating the
///   application (a non-activating panel can take the keyboard without it),
///   so Return keeps and Escape reverts. When it goes, the keyboard returns
///   to the identification window if that had it before.
/// - The switch prompt appears over whatever the user is doing: it never
///   activates the application and never takes the keyboard.
/// - A panel is centred when it appears, never while it is shown.
/// - While the confirmation panel is shown, alerts wait: a modal alert would
///   block Keep and the change would revert. They run, in order, when the
///   panel goes. The confirmation panel also works while an alert that was
///   already open runs modally.
class Focus {
public:
    /// The identification window shows its content: its first show (since it
    /// was opened) brings it to the user, later ones change it in place.
    Presentation identificationShown();
    /// The user asked for the open window again (Identify in the menu): it
    /// comes to the front where it stands and takes the keyboard, unless the
    /// confirmation panel holds it.
    Presentation identificationRequested();
    void identificationClosed();

    /// A panel appears (fades in).
    Presentation panelShown(PanelKind panel);
    /// A shown panel's content changes: in place, always.
    static Presentation panelUpdated(PanelKind panel);
    /// A panel goes. Returns the window that takes the keyboard back, if any.
    std::optional<ShellWindow> panelHidden(PanelKind panel);

    /// Alerts wait while this holds (the confirmation panel is shown).
    bool holdsAlerts() const { return keyWindow_ == ShellWindow::confirmationPanel; }
    /// Whether the panel takes clicks while another window runs modally.
    static bool worksWhenModal(PanelKind panel);
    /// How the identification window takes the keyboard back from the
    /// confirmation panel: key, where it stands, without activating.
    static Presentation keyReturned();
    /// The key that presses a panel button or a window's button: Return for
    /// the default (accept, primary), Escape for the cancel (secondary) one.
    static std::string keyEquivalent(PanelButton button);

    /// The window the shell last made key and that is still shown.
    std::optional<ShellWindow> keyWindow() const { return keyWindow_; }
    bool isIdentificationShown() const { return identificationShown_; }

private:
    std::optional<ShellWindow> keyWindow_;
    /// Who had the keyboard before the confirmation panel took it.
    std::optional<ShellWindow> keyBeforePanel_;
    bool identificationShown_ = false;
};

} // namespace HalvoraPro
