#pragma once

#include <HalvoraPro/ShellView.hpp>
#include <memory>

namespace Halvora {

/// Shows everything on two views: the simulated one, which keeps time on the
/// virtual clock and holds the alerts until the script answers them, and a
/// mirror (the real AppKit views in the application's self-test). Only the
/// simulated view answers: its fades complete and its alerts respond; the
/// mirror is told of every alert but never answers one, and never ends the
/// process.
class MirroredShellView final : public HalvoraPro::ShellView {
public:
    MirroredShellView(std::shared_ptr<HalvoraPro::ShellView> primary,
                      std::shared_ptr<HalvoraPro::ShellView> mirror)
        : primary_(std::move(primary)), mirror_(std::move(mirror)) {}

    void activateApplication() override;
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

private:
    std::shared_ptr<HalvoraPro::ShellView> primary_;
    std::shared_ptr<HalvoraPro::ShellView> mirror_;
};

} // namespace Halvora
