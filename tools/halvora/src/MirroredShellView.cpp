#include "MirroredShellView.hpp"

namespace Halvora {

using HalvoraPro::PanelKind;

void MirroredShellView::activateApplication() {
    primary_->activateApplication();
    mirror_->activateApplication();
}

void MirroredShellView::renderPanel(PanelKind panel, const HalvoraPro::PanelContent& content) {
    primary_->renderPanel(panel, content);
    mirror_->renderPanel(panel, content);
}

void MirroredShellView::fadeInPanel(PanelKind panel, const HalvoraPro::Presentation& how) {
    primary_->fadeInPanel(panel, how);
    mirror_->fadeInPanel(panel, how);
}

void MirroredShellView::fadeOutPanel(PanelKind panel, std::function<void()> completed) {
    // The mirror fades too; the shell orders the panel out on both once the
    // simulated fade has run its course on the virtual clock.
    mirror_->fadeOutPanel(panel, [] {});
    primary_->fadeOutPanel(panel, std::move(completed));
}

void MirroredShellView::orderOutPanel(PanelKind panel) {
    primary_->orderOutPanel(panel);
    mirror_->orderOutPanel(panel);
}

void MirroredShellView::showIdentification(const HalvoraPro::IdentificationContent& content,
                                           const HalvoraPro::Presentation& how) {
    primary_->showIdentification(content, how);
    mirror_->showIdentification(content, how);
}

void MirroredShellView::closeIdentification() {
    primary_->closeIdentification();
    mirror_->closeIdentification();
}

void MirroredShellView::updateOpenMenu(const HalvoraPro::Menu& menu) {
    primary_->updateOpenMenu(menu);
    mirror_->updateOpenMenu(menu);
}

void MirroredShellView::runAlert(const HalvoraPro::Alert& alert,
                                 std::function<void(std::size_t)> response) {
    mirror_->runAlert(alert, [](std::size_t) {});
    primary_->runAlert(alert, std::move(response));
}

void MirroredShellView::terminate() {
    primary_->terminate();
}

} // namespace Halvora
