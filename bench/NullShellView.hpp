#pragma once

#include <HalvoraPro/ShellView.hpp>

namespace Bench {

/// A screen that shows nothing: the benchmarks measure the shell, not drawing.
/// Fade-outs end at once; alerts are never answered.
class NullShellView final : public HalvoraPro::ShellView {
public:
    void activateApplication() override {}
    void renderPanel(HalvoraPro::PanelKind, const HalvoraPro::PanelContent&) override {}
    void fadeInPanel(HalvoraPro::PanelKind, const HalvoraPro::Presentation&) override {}
    void fadeOutPanel(HalvoraPro::PanelKind, std::function<void()> completed) override {
        completed();
    }
    void orderOutPanel(HalvoraPro::PanelKind) override {}
    void showIdentification(const HalvoraPro::IdentificationContent&,
                            const HalvoraPro::Presentation&) override {}
    void closeIdentification() override {}
    void updateOpenMenu(const HalvoraPro::Menu&) override {}
    void runAlert(const HalvoraPro::Alert&, std::function<void(std::size_t)>) override {}
    void terminate() override {}
};

} // namespace Bench
