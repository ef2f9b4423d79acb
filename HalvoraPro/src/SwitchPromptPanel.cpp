#include <HalvoraPro/SwitchPromptPanel.hpp>

namespace HalvoraPro {

using HalvoraCore::ModeChoice;

SwitchPromptPanel::SwitchPromptPanel(std::weak_ptr<HalvoraCore::SplitController> controller,
                                     std::shared_ptr<ShellView> view, std::shared_ptr<Focus> focus)
    : controller_(std::move(controller)), view_(view), focus_(std::move(focus)),
      panel_(PanelKind::switchPrompt, std::move(view)) {}

PanelContent SwitchPromptPanel::content(ModeChoice target, const EDIDKit::Resolution& resolution) {
    return {"rectangle.split.2x1.fill",
            Text::localized("prompt.title"),
            Text::localized(target == ModeChoice::split ? "prompt.toSplit" : "prompt.toFull",
                            {resolution.description()}),
            std::nullopt,
            std::nullopt,
            Text::localized("prompt.ignore"),
            Text::localized("prompt.switch")};
}

void SwitchPromptPanel::refresh() {
    const auto c = controller_.lock();
    if (c && c->switchPrompt()) {
        show(c->switchPrompt()->target, c->switchPrompt()->resolution);
    } else if (isShown_) {
        isShown_ = false;
        panel_.fadeOut();
    }
}

void SwitchPromptPanel::show(ModeChoice target, const EDIDKit::Resolution& resolution) {
    view_->renderPanel(PanelKind::switchPrompt, content(target, resolution));
    if (isShown_) return;
    isShown_ = true;
    panel_.fadeIn(focus_->panelShown(PanelKind::switchPrompt));
}

void SwitchPromptPanel::ignore() {
    if (const auto c = controller_.lock()) c->dismissSwitchPrompt();
}

void SwitchPromptPanel::accept() {
    if (const auto c = controller_.lock()) c->acceptSwitchPrompt();
}

void SwitchPromptPanel::press(PanelButton button) {
    button == PanelButton::accept ? accept() : ignore();
}

} // namespace HalvoraPro
