#pragma once

#include <HalvoraPro/ShellView.hpp>
#include <deque>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

namespace TestDoubles {

/// A screen a test scripts: it records what the shell asks of it. Fade-outs wait until a
/// test completes them; alerts wait until a test answers them.
class ScriptedShellView final : public HalvoraPro::ShellView {
public:
    struct OpenAlert {
        HalvoraPro::Alert alert;
        std::function<void(std::size_t)> response;
    };

    void activateApplication() override { ++activations; }
    void renderPanel(HalvoraPro::PanelKind panel,
                     const HalvoraPro::PanelContent& content) override {
        rendered[panel] = content;
        calls.push_back("render " + name(panel));
    }
    void fadeInPanel(HalvoraPro::PanelKind panel, const HalvoraPro::Presentation& how) override {
        orderedIn[panel] = true;
        present(how);
        if (how.becomesKey) keyWindow = name(panel);
        panelPresentations[panel].push_back(how);
        calls.push_back("fadeIn " + name(panel));
    }
    void fadeOutPanel(HalvoraPro::PanelKind panel, std::function<void()> completed) override {
        pendingFades.push_back(std::move(completed));
        calls.push_back("fadeOut " + name(panel));
    }
    void orderOutPanel(HalvoraPro::PanelKind panel) override {
        orderedIn[panel] = false;
        if (keyWindow == name(panel)) keyWindow.clear();
        calls.push_back("orderOut " + name(panel));
    }
    void showIdentification(const HalvoraPro::IdentificationContent& content,
                            const HalvoraPro::Presentation& how) override {
        identification = content;
        present(how);
        if (how.becomesKey) keyWindow = "identification";
        identificationPresentations.push_back(how);
        calls.push_back("showIdentification");
    }
    void closeIdentification() override {
        identification.reset();
        if (keyWindow == "identification") keyWindow.clear();
        calls.push_back("closeIdentification");
    }
    void updateOpenMenu(const HalvoraPro::Menu& menu) override {
        updatedMenus.push_back(menu);
        calls.push_back("updateOpenMenu");
    }
    void runAlert(const HalvoraPro::Alert& alert,
                  std::function<void(std::size_t)> response) override {
        alerts.push_back({alert, std::move(response)});
        calls.push_back("alert " + alert.message.key);
    }
    void terminate() override {
        terminated = true;
        calls.push_back("terminate");
        if (onTerminate) onTerminate();
    }
    /// Told when the application is told to terminate, to look at the
    /// machine as it is at that moment.
    std::function<void()> onTerminate;

    /// The menus the open menu was updated to, in order.
    std::vector<HalvoraPro::Menu> updatedMenus;

    /// Ends every fade-out animation that is running, oldest first.
    void completeFades() {
        auto fades = std::move(pendingFades);
        pendingFades.clear();
        for (auto& f : fades)
            f();
    }
    /// Answers the oldest alert with button `index`.
    void answer(std::size_t index) {
        auto alert = std::move(alerts.front());
        alerts.pop_front();
        if (alert.response) alert.response(index);
    }
    std::size_t count(const std::string& call) const {
        std::size_t n = 0;
        for (const auto& c : calls)
            n += c == call ? 1u : 0u;
        return n;
    }

    void present(const HalvoraPro::Presentation& how) {
        if (how.activatesApplication) ++activations;
    }

    static std::string name(HalvoraPro::PanelKind panel) {
        return panel == HalvoraPro::PanelKind::confirmation ? "confirmation" : "switchPrompt";
    }

    /// Activations, asked for on their own or with a window.
    int activations = 0;
    /// How each fade-in of a panel presented it, in order.
    std::map<HalvoraPro::PanelKind, std::vector<HalvoraPro::Presentation>> panelPresentations;
    /// How each show of the identification window presented it, in order.
    std::vector<HalvoraPro::Presentation> identificationPresentations;
    /// The window the view made key last and that is still shown: "identification",
    /// a panel's name, or "" for none.
    std::string keyWindow;
    std::map<HalvoraPro::PanelKind, HalvoraPro::PanelContent> rendered;
    std::map<HalvoraPro::PanelKind, bool> orderedIn;
    std::vector<std::function<void()>> pendingFades;
    std::optional<HalvoraPro::IdentificationContent> identification;
    std::deque<OpenAlert> alerts;
    std::vector<std::string> calls;
    bool terminated = false;
};

} // namespace TestDoubles
