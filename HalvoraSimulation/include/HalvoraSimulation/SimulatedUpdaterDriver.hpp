#pragma once

#include <HalvoraSimulation/SimulatedShellView.hpp>

#include <HalvoraPro/Updater.hpp>

#include <memory>

namespace HalvoraSimulation {

/// The update framework in the simulator: a check the user asks for opens
/// its window, which the user looks at at once.
class SimulatedUpdaterDriver final : public HalvoraPro::UpdaterDriver {
public:
    explicit SimulatedUpdaterDriver(SimulatedShellView& view) : view_(view) {}
    bool canCheckForUpdates() const override { return true; }
    void checkForUpdates() override {
        const auto updater = updater_.lock();
        if (updater && updater->pendingVersion()) {
            view_.note("The update window shows Halvora Pro " + *updater->pendingVersion());
            updater->didReceiveUserAttention();
            updater->willFinishUpdateSession();
        } else {
            view_.note("The update window says Halvora Pro is up to date");
        }
    }
    void attach(std::weak_ptr<HalvoraPro::Updater> updater) { updater_ = std::move(updater); }

private:
    SimulatedShellView& view_;
    std::weak_ptr<HalvoraPro::Updater> updater_;
};

} // namespace HalvoraSimulation
