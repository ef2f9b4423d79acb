#pragma once

// The self-test's AppKit half: the real views shown what the simulated run
// shows, the user's gestures carried out on their controls, and the screen
// looked at and pictured. It only performs and captures; what to do, what to
// expect and when to picture it are decided by the portable self-test
// (tools/halvora: SelfTest, SelfTestObserver). Built only on Apple platforms.

#include "MacShellView.hpp"

#include <Gestures.hpp>
#include <Screen.hpp>
#include <functional>
#include <memory>
#include <string>

namespace HalvoraPro {

/// The application's views, shown everything the run shows. Alerts are drawn
/// but never run (a modal alert would stop the script); the process never
/// ends on the application's quit.
class SelfTestView final : public ShellView {
public:
    SelfTestView(std::shared_ptr<MacShellView> views,
                 std::function<std::string(const Text&)> localize);
    ~SelfTestView() override;

    void activateApplication() override { views_->activateApplication(); }
    void renderPanel(PanelKind panel, const PanelContent& content) override {
        views_->renderPanel(panel, content);
    }
    void fadeInPanel(PanelKind panel, const Presentation& how) override { views_->fadeInPanel(panel, how); }
    void fadeOutPanel(PanelKind panel, std::function<void()> completed) override {
        views_->fadeOutPanel(panel, std::move(completed));
    }
    void orderOutPanel(PanelKind panel) override { views_->orderOutPanel(panel); }
    void showIdentification(const IdentificationContent& content, const Presentation& how) override {
        views_->showIdentification(content, how);
    }
    void closeIdentification() override { views_->closeIdentification(); }
    void updateOpenMenu(const Menu& menu) override { views_->updateOpenMenu(menu); }
    void runAlert(const Alert& alert, std::function<void(std::size_t)> response) override;
    void terminate() override {}

    /// Everything leaves the screen: the application has ended.
    void clear();
    /// Writes the oldest alert drawn and not yet pictured as a PNG.
    bool captureNextAlert(const std::string& png);

    struct Alerts;

private:
    std::shared_ptr<MacShellView> views_;
    std::function<std::string(const Text&)> localize_;
    std::unique_ptr<Alerts> alerts_;
};

/// The user's gestures on the real controls: menu items through their action
/// (-[NSApplication sendAction:to:from:]), buttons and radios with
/// -[NSButton performClick:], the window's close box with -[NSWindow performClose:].
class AppKitGestures final : public Halvora::Gestures {
public:
    AppKitGestures(std::shared_ptr<MacShellView> views,
                   std::function<std::string(const Text&)> localize)
        : views_(std::move(views)), localize_(std::move(localize)) {}

    void openMenu(const Menu& menu) override;
    void chooseMenuItem(std::size_t index, const MenuItem& item) override;
    void pressPanelButton(PanelKind panel, Halvora::DialogButton button,
                          MenuBarController& shell) override;
    void chooseRadio(std::size_t index, IdentificationWindow& window) override;
    void pressWindowButton(Halvora::DialogButton button, IdentificationContent::Action action,
                           IdentificationWindow& window) override;
    void closeWindow(IdentificationWindow& window) override;

private:
    std::shared_ptr<MacShellView> views_;
    std::function<std::string(const Text&)> localize_;
};

/// The screen as AppKit has it: which windows are visible, and their pictures
/// (-[NSView bitmapImageRepForCachingDisplayInRect:],
/// -[NSBitmapImageRep representationUsingType:properties:]).
class AppKitScreen final : public Halvora::Screen {
public:
    AppKitScreen(std::shared_ptr<MacShellView> views, std::shared_ptr<SelfTestView> shown)
        : views_(std::move(views)), shown_(std::move(shown)) {}

    void settle() override;
    std::set<Halvora::ShownWindow> visibleWindows() const override;
    bool capture(Halvora::ShownWindow window, const std::filesystem::path& png) override;

private:
    std::shared_ptr<MacShellView> views_;
    std::shared_ptr<SelfTestView> shown_;
};

} // namespace HalvoraPro
