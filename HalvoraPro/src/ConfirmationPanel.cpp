#include <HalvoraPro/ConfirmationPanel.hpp>
#include <algorithm>
#include <cmath>

namespace HalvoraPro {

std::shared_ptr<ConfirmationPanel>
ConfirmationPanel::create(std::weak_ptr<HalvoraCore::SplitController> controller,
                          std::shared_ptr<HalvoraCore::Scheduler> scheduler,
                          std::shared_ptr<ShellView> view) {
    return std::shared_ptr<ConfirmationPanel>(
        new ConfirmationPanel(std::move(controller), std::move(scheduler), std::move(view)));
}

ConfirmationPanel::ConfirmationPanel(std::weak_ptr<HalvoraCore::SplitController> controller,
                                     std::shared_ptr<HalvoraCore::Scheduler> scheduler,
                                     std::shared_ptr<ShellView> view)
    : controller_(std::move(controller)), scheduler_(std::move(scheduler)), view_(view),
      panel_(PanelKind::confirmation, std::move(view)) {}

PanelContent ConfirmationPanel::content(double remaining, double total) {
    remaining = std::max(0.0, remaining);
    const auto seconds = static_cast<long long>(std::ceil(remaining));
    return {"checkmark.rectangle.stack.fill",
            Text::localized("confirm.title"),
            Text::localized("confirm.message"),
            Text::localized("confirm.countdown", {seconds}),
            total > 0 ? std::min(1.0, remaining / total) : 0.0,
            Text::localized("confirm.revert"),
            Text::localized("confirm.keep")};
}

void ConfirmationPanel::present(double deadline) {
    // The bar starts full however close the deadline is; a deadline that has
    // already passed counts down from one second, so the bar never divides by zero.
    const double remaining = deadline - scheduler_->now();
    total_ = remaining > 0 ? remaining : 1.0;
    render(deadline);
    view_->activateApplication();
    panel_.fadeIn();
    if (timer_) timer_->cancel();
    scheduleTick();
}

void ConfirmationPanel::render(double deadline) {
    view_->renderPanel(PanelKind::confirmation, content(deadline - scheduler_->now(), total_));
}

void ConfirmationPanel::dismiss() {
    if (timer_) timer_->cancel();
    timer_.reset();
    panel_.fadeOut();
}

void ConfirmationPanel::keep() {
    if (const auto c = controller_.lock()) c->keep();
}

void ConfirmationPanel::revert() {
    if (const auto c = controller_.lock()) c->revert();
}

void ConfirmationPanel::perform(PanelAction action) {
    switch (action) {
    case PanelAction::defaultAction:
        keep();
        return;
    case PanelAction::cancelAction:
        revert();
        return;
    }
}

void ConfirmationPanel::scheduleTick() {
    timer_ = scheduler_->schedule(tickInterval, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->tick();
    });
}

void ConfirmationPanel::tick() {
    const auto c = controller_.lock();
    const auto pending = c ? c->pendingConfirmation() : std::nullopt;
    if (!pending) {
        dismiss();
        return;
    }
    render(pending->deadline);
    scheduleTick();
}

} // namespace HalvoraPro
