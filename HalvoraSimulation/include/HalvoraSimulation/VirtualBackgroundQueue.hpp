#pragma once

#include <HalvoraPlatform/seams/BackgroundQueue.hpp>
#include <HalvoraSimulation/VirtualClock.hpp>
#include <memory>

namespace HalvoraSimulation {

/// The recorded machine's background queue: work is a task on the virtual
/// clock, due at once, so it runs after the caller has returned, as work on
/// another thread would, and every run stays reproducible.
class VirtualBackgroundQueue final : public HalvoraPlatform::BackgroundQueue {
public:
    explicit VirtualBackgroundQueue(std::shared_ptr<VirtualClock> clock)
        : clock_(std::move(clock)) {}
    void async(std::function<void()> work) override {
        if (const auto clock = clock_.lock()) clock->schedule(0, std::move(work));
    }

private:
    std::weak_ptr<VirtualClock> clock_; // pending work may hold what holds the queue
};

} // namespace HalvoraSimulation
