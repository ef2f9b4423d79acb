#pragma once

#include <HalvoraPlatform/seams/MainRunLoop.hpp>
#include <HalvoraSimulation/VirtualClock.hpp>
#include <cstddef>
#include <memory>
#include <vector>

namespace HalvoraSimulation {

/// The main run loop of the recorded machine: its clock is the virtual clock,
/// a timer is a task on it (a repeating one schedules its next firing when it
/// fires; it fires on time, whatever its tolerance), and work dispatched to
/// the main queue is a task due at once, so it runs when the clock next runs,
/// never synchronously. Once the clock is gone nothing runs and the time
/// stands at 0. It counts the times a timer fired (each a wake-up of the
/// processor on a Mac) and lists the timers that are set.
class VirtualRunLoop final : public HalvoraPlatform::MainRunLoop {
public:
    explicit VirtualRunLoop(std::shared_ptr<VirtualClock> clock);

    /// A timer that is set: neither invalidated nor, when it does not repeat, fired.
    struct TimerSetting {
        double interval = 0;
        bool repeats = false;
        double tolerance = 0;
        friend bool operator==(const TimerSetting&, const TimerSetting&) = default;
    };

    double now() const override;
    std::shared_ptr<Timer> addTimer(double interval, bool repeats, std::function<void()> action,
                                    double tolerance) override;
    void dispatchAsync(std::function<void()> action) override;

    /// How many times a timer has fired since the run loop was made.
    std::size_t timerFirings() const { return stats_->firings; }
    /// The timers set now, in the order they were added.
    std::vector<TimerSetting> timers() const;

    struct Stats {
        std::size_t firings = 0;
        std::vector<std::weak_ptr<Timer>> timers;
    };

private:
    /// Held weakly: pending work on the clock may hold what holds the run loop.
    std::weak_ptr<VirtualClock> clock_;
    std::shared_ptr<Stats> stats_ = std::make_shared<Stats>();
};

} // namespace HalvoraSimulation
