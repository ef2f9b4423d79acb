#pragma once

#include <HalvoraPro/ShellView.hpp>
#include <Screen.hpp>
#include <TemporaryFolder.hpp>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace TestDoubles {

/// A real screen as the self-test sees one, scripted: it is shown what the
/// application shows (as the mirror of the simulated view) and shows it, unless
/// a test makes it lose a panel or keep a closed window. A capture writes a
/// small text file named as the PNG would be.
class ScriptedScreen final : public HalvoraPro::ShellView, public Halvora::Screen {
public:
    /// Panels of this kind never reach the screen.
    std::set<HalvoraPro::PanelKind> neverShown;
    /// The identification window stays on the screen when it is closed.
    bool keepsClosedWindow = false;
    /// Captures fail.
    bool capturesFail = false;

    std::vector<std::string> captures;
    int settled = 0;
    int alertsDrawn = 0;

    void activateApplication() override {}
    void renderPanel(HalvoraPro::PanelKind, const HalvoraPro::PanelContent&) override {}
    void fadeInPanel(HalvoraPro::PanelKind panel, const HalvoraPro::Presentation&) override {
        if (!neverShown.contains(panel)) panels_.insert(panel);
    }
    // The panel is transparent at the end of its fade and leaves when ordered out.
    void fadeOutPanel(HalvoraPro::PanelKind panel, std::function<void()>) override {
        panels_.erase(panel);
    }
    void orderOutPanel(HalvoraPro::PanelKind panel) override { panels_.erase(panel); }
    void showIdentification(const HalvoraPro::IdentificationContent&, const HalvoraPro::Presentation&) override {
        window_ = true;
    }
    void closeIdentification() override { window_ = keepsClosedWindow; }
    void updateOpenMenu(const HalvoraPro::Menu&) override {}
    void runAlert(const HalvoraPro::Alert&, std::function<void(std::size_t)>) override {
        ++alertsDrawn;
    }
    void terminate() override {}

    void settle() override { ++settled; }
    std::set<Halvora::ShownWindow> visibleWindows() const override {
        std::set<Halvora::ShownWindow> visible;
        if (panels_.contains(HalvoraPro::PanelKind::confirmation))
            visible.insert(Halvora::ShownWindow::confirmationPanel);
        if (panels_.contains(HalvoraPro::PanelKind::switchPrompt))
            visible.insert(Halvora::ShownWindow::switchPrompt);
        if (window_) visible.insert(Halvora::ShownWindow::identificationWindow);
        return visible;
    }
    bool capture(Halvora::ShownWindow window, const std::filesystem::path& png) override {
        if (capturesFail) return false;
        TestSupport::writeFile(png, Halvora::fileNameOf(window));
        captures.push_back(png.filename().string());
        return true;
    }

    /// Forgets what was on the screen (the application has ended).
    void clear() {
        panels_.clear();
        window_ = false;
    }

private:
    std::set<HalvoraPro::PanelKind> panels_;
    bool window_ = false;
};

} // namespace TestDoubles
