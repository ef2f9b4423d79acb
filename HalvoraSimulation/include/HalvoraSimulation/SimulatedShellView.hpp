#pragma once

#include <HalvoraPro/LocalizedStrings.hpp>
#include <HalvoraPro/ShellView.hpp>
#include <HalvoraSimulation/VirtualClock.hpp>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <ostream>

namespace HalvoraSimulation {

/// The simulator's screen: prints what a user would see, in the English
/// texts, with the virtual time in front. Fades take their 0.15 s on the
/// virtual clock; alerts stay open until a command presses a button.
class SimulatedShellView final : public HalvoraPro::ShellView {
public:
    struct OpenAlert {
        HalvoraPro::Alert alert;
        std::function<void(std::size_t)> response;
    };

    SimulatedShellView(std::ostream& out, std::shared_ptr<HalvoraSimulation::VirtualClock> clock);

    void activateApplication() override {}
    void renderPanel(HalvoraPro::PanelKind panel, const HalvoraPro::PanelContent& content) override;
    void fadeInPanel(HalvoraPro::PanelKind panel, const HalvoraPro::Presentation& how) override;
    void fadeOutPanel(HalvoraPro::PanelKind panel, std::function<void()> completed) override;
    void orderOutPanel(HalvoraPro::PanelKind panel) override;
    void showIdentification(const HalvoraPro::IdentificationContent& content,
                            const HalvoraPro::Presentation& how) override;
    void closeIdentification() override;
    void updateOpenMenu(const HalvoraPro::Menu& menu) override;
    void runAlert(const HalvoraPro::Alert& alert,
                  std::function<void(std::size_t)> response) override;
    void terminate() override;

    /// Told when the open menu changes; the simulator keeps and prints it.
    std::function<void(const HalvoraPro::Menu&)> onMenuUpdate;

    /// Ordered in and not fading out.
    bool isPanelShown(HalvoraPro::PanelKind panel) const;
    /// What the panel was last given to show; nullptr before that.
    const HalvoraPro::PanelContent* panelContent(HalvoraPro::PanelKind panel) const;
    /// How many alerts have been shown, answered or not.
    std::size_t alertsShown() const { return alertsShown_; }
    const std::optional<HalvoraPro::IdentificationContent>& identification() const {
        return identification_;
    }
    const std::deque<OpenAlert>& alerts() const { return alerts_; }
    /// Presses button `index` (from 0) of the oldest alert; false when there
    /// is no alert or no such button.
    bool pressAlertButton(std::size_t index);
    /// The buttons an alert shows ("OK" when it names none).
    std::vector<std::string> buttons(const HalvoraPro::Alert& alert) const;
    bool hasTerminated() const { return terminated_; }
    /// Forgets the windows of an application that has ended.
    void reset();

    std::string say(const HalvoraPro::Text& text) const;
    /// Prints one line stamped with the virtual time.
    void note(const std::string& line);
    /// Prints a line that belongs to the one before it.
    void detail(const std::string& line);

private:
    struct Panel {
        std::optional<HalvoraPro::PanelContent> content;
        bool orderedIn = false;
        bool fadingOut = false;
        std::string lastCountdown;
    };
    void printCountdown(Panel& panel);

    std::ostream& out_;
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock_;
    std::map<HalvoraPro::PanelKind, Panel> panels_;
    std::optional<HalvoraPro::IdentificationContent> identification_;
    std::deque<OpenAlert> alerts_;
    std::size_t alertsShown_ = 0;
    bool terminated_ = false;
};

} // namespace HalvoraSimulation
