#pragma once

#include <DisplayHardware/VirtualClock.hpp>
#include <DisplayHardware/seams/MainRunLoop.hpp>
#include <memory>

namespace DisplayHardware {

/// The main run loop of the recorded machine: its clock is the virtual clock,
/// a timer is a task on it (a repeating one schedules its next firing when it
/// fires), and work dispatched to the main queue is a task due at once, so
/// it runs when the clock next runs, never synchronously. Once the clock is
/// gone nothing runs and the time stands at 0.
class VirtualRunLoop final : public MainRunLoop {
public:
    explicit VirtualRunLoop(std::shared_ptr<VirtualClock> clock);

    double now() const override;
    std::shared_ptr<Timer> addTimer(double interval, bool repeats,
                                    std::function<void()> action) override;
    void dispatchAsync(std::function<void()> action) override;

private:
    /// Held weakly: pending work on the clock may hold what holds the run loop.
    std::weak_ptr<VirtualClock> clock_;
};

} // namespace DisplayHardware
