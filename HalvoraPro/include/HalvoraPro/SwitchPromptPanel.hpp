#pragma once

#include <EDIDKit/Resolution.hpp>
#include <HalvoraCore/ModeChoice.hpp>
#include <HalvoraCore/SplitController.hpp>
#include <HalvoraPro/FadingPanel.hpp>
#include <HalvoraPro/Focus.hpp>
#include <memory>

namespace HalvoraPro {

/// The floating panel that offers to switch a display whose monitor changed
/// between full and split by itself: ignore (Escape) or switch (Return).
class SwitchPromptPanel {
public:
    SwitchPromptPanel(std::weak_ptr<HalvoraCore::SplitController> controller,
                      std::shared_ptr<ShellView> view,
                      std::shared_ptr<Focus> focus = std::make_shared<Focus>());

    static PanelContent content(HalvoraCore::ModeChoice target,
                                const EDIDKit::Resolution& resolution);

    /// Follows the controller's offer: shows it, or fades out when it is gone.
    void refresh();
    /// Sets the text; fades in only when the panel is not shown already,
    /// without activating the application or taking the keyboard.
    void show(HalvoraCore::ModeChoice target, const EDIDKit::Resolution& resolution);

    // The buttons.
    void ignore();
    void accept();
    /// A button, or its key: Return switches, Escape ignores.
    void press(PanelButton button);

    bool isShown() const { return isShown_; }
    const FadingPanel& panel() const { return panel_; }

private:
    std::weak_ptr<HalvoraCore::SplitController> controller_;
    std::shared_ptr<ShellView> view_;
    std::shared_ptr<Focus> focus_;
    FadingPanel panel_;
    bool isShown_ = false;
};

} // namespace HalvoraPro
