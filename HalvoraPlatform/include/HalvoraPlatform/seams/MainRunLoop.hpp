#pragma once

#include <functional>
#include <memory>

namespace HalvoraPlatform {

/// The main thread's clock, timers and queue.
class MainRunLoop {
public:
    /// A timer on the run loop; invalidating it twice, or after it fired, is harmless.
    class Timer {
    public:
        virtual ~Timer() = default;
        virtual void invalidate() = 0;
    };

    virtual ~MainRunLoop() = default;
    /// The wall clock, in seconds.
    virtual double now() const = 0;
    /// A timer in the common run-loop modes, firing `action` on the main
    /// thread after `interval` seconds, and every `interval` seconds after
    /// that when it `repeats`; the system may fire it up to `tolerance`
    /// seconds late, to wake the processor fewer times.
    virtual std::shared_ptr<Timer> addTimer(double interval, bool repeats,
                                            std::function<void()> action, double tolerance) = 0;
    /// Runs `action` on the main queue, later.
    virtual void dispatchAsync(std::function<void()> action) = 0;
};

} // namespace HalvoraPlatform
