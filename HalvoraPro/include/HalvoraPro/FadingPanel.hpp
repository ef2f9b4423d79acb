#pragma once

#include <HalvoraPro/ShellView.hpp>
#include <memory>

namespace HalvoraPro {

/// The fading of a floating panel. Every fade counts a generation, so that a
/// fade-out overtaken by a newer fade-in does not hide the panel when its
/// animation ends.
class FadingPanel {
public:
    FadingPanel(PanelKind kind, std::shared_ptr<ShellView> view)
        : kind_(kind), view_(std::move(view)), state_(std::make_shared<State>()) {}

    void fadeIn(const Presentation& how) {
        ++state_->generation;
        state_->visible = true;
        view_->fadeInPanel(kind_, how);
    }

    void fadeOut() {
        const unsigned generation = ++state_->generation;
        view_->fadeOutPanel(kind_,
                            [state = std::weak_ptr<State>(state_),
                             view = std::weak_ptr<ShellView>(view_), kind = kind_, generation] {
                                const auto s = state.lock();
                                const auto v = view.lock();
                                if (!s || !v || s->generation != generation) return;
                                s->visible = false;
                                v->orderOutPanel(kind);
                            });
    }

    unsigned generation() const { return state_->generation; }
    /// Ordered in: from a fade-in until a fade-out that was not overtaken ends.
    bool isVisible() const { return state_->visible; }

private:
    struct State {
        unsigned generation = 0;
        bool visible = false;
    };

    PanelKind kind_;
    std::shared_ptr<ShellView> view_;
    std::shared_ptr<State> state_;
};

} // namespace HalvoraPro
