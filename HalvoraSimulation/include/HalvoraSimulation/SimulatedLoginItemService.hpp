#pragma once

#include <HalvoraPro/LoginItem.hpp>
#include <stdexcept>

namespace HalvoraSimulation {

/// A login-item service for the simulator and tests: keeps its status in
/// memory, can be told to refuse, and counts visits to System Settings.
class SimulatedLoginItemService final : public HalvoraPro::LoginItemService {
public:
    Status status() const override { return status_; }
    void registerApp() override {
        if (refuse) throw std::runtime_error("Operation not permitted");
        status_ = needsApproval ? Status::requiresApproval : Status::enabled;
    }
    void unregisterApp() override {
        if (refuse) throw std::runtime_error("Operation not permitted");
        status_ = Status::notRegistered;
    }
    void openSystemSettingsLoginItems() override { ++settingsOpened; }

    void setStatus(Status s) { status_ = s; }
    /// Register and unregister fail while set.
    bool refuse = false;
    /// A registration waits for the user's approval.
    bool needsApproval = false;
    int settingsOpened = 0;

private:
    Status status_ = Status::notRegistered;
};

} // namespace HalvoraSimulation
