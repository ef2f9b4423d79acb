#pragma once

// The shell's view on a Mac: the status item and its menu, the two floating
// panels, the identification window and the modal alerts, drawn with AppKit.
// It renders what the portable shell decides and forwards the user's clicks
// to it; it decides nothing. Built only on Apple platforms.

#include <HalvoraPro/MenuBarController.hpp>
#include <HalvoraPro/ShellView.hpp>
#include <functional>
#include <memory>
#include <string>

#ifdef __OBJC__
@class NSMenu;
@class NSWindow;
#endif

namespace HalvoraPro {

class MacShellView final : public ShellView {
public:
    explicit MacShellView(std::function<std::string(const Text&)> localize);
    ~MacShellView() override;

    /// Installs the status item, whose menu is rebuilt by `menu` each time it
    /// opens, and sends the panels' and the window's buttons there.
    void attach(const std::shared_ptr<MenuBarController>& menu);

    void activateApplication() override;
    void renderPanel(PanelKind panel, const PanelContent& content) override;
    void fadeInPanel(PanelKind panel, const Presentation& how) override;
    void fadeOutPanel(PanelKind panel, std::function<void()> completed) override;
    void orderOutPanel(PanelKind panel) override;
    void showIdentification(const IdentificationContent& content, const Presentation& how) override;
    void closeIdentification() override;
    void updateOpenMenu(const Menu& menu) override;
    void runAlert(const Alert& alert, std::function<void(std::size_t button)> response) override;
    void terminate() override;

#ifdef __OBJC__
    /// The AppKit objects that the self-test opens, presses and pictures
    /// (nil until first shown).
    NSMenu* statusMenu() const;
    NSWindow* panelWindow(PanelKind panel) const;
    NSWindow* identificationWindow() const;
#endif

    /// The AppKit objects, in MacShellView.mm.
    struct Views;

private:
    std::unique_ptr<Views> views_;
};

} // namespace HalvoraPro
