#pragma once

#include <HalvoraCore/Scheduler.hpp>
#include <HalvoraCore/SplitController.hpp>
#include <HalvoraPro/FadingPanel.hpp>
#include <HalvoraPro/PanelAction.hpp>
#include <memory>
#include <optional>

namespace HalvoraPro {

/// The floating panel that asks the user to keep an applied change before its
/// deadline: a countdown with its bar, revert (Escape) and keep (Return). It
/// follows the controller's pending confirmation and fades out as soon as
/// nothing is pending.
class ConfirmationPanel : public std::enable_shared_from_this<ConfirmationPanel> {
public:
    static constexpr double tickInterval = 0.1;

    static std::shared_ptr<ConfirmationPanel>
    create(std::weak_ptr<HalvoraCore::SplitController> controller,
           std::shared_ptr<HalvoraCore::Scheduler> scheduler, std::shared_ptr<ShellView> view);

    /// What the panel shows with `remaining` seconds left of `total`: the
    /// seconds rounded up, and the bar at remaining / total.
    static PanelContent content(double remaining, double total);

    /// Shows the panel counting down to `deadline` and starts its ticker.
    void present(double deadline);
    /// Brings the countdown and the bar up to date.
    void render(double deadline);
    /// Stops the ticker and fades the panel out (nothing pending any more).
    void dismiss();

    // The buttons.
    void keep();
    void revert();
    /// The panel's answers: the default action (Return) keeps the change,
    /// the cancel action (Escape) reverts it.
    void perform(PanelAction action);

    bool isTimerRunning() const { return timer_.has_value(); }
    /// The countdown's length when it was presented (one second when the
    /// deadline had already passed).
    double total() const { return total_; }
    const FadingPanel& panel() const { return panel_; }

private:
    ConfirmationPanel(std::weak_ptr<HalvoraCore::SplitController> controller,
                      std::shared_ptr<HalvoraCore::Scheduler> scheduler,
                      std::shared_ptr<ShellView> view);
    void scheduleTick();
    void tick();

    std::weak_ptr<HalvoraCore::SplitController> controller_;
    std::shared_ptr<HalvoraCore::Scheduler> scheduler_;
    std::shared_ptr<ShellView> view_;
    FadingPanel panel_;
    std::optional<HalvoraCore::ScheduledTask> timer_;
    double total_ = 1;
};

} // namespace HalvoraPro
