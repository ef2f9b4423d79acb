#pragma once

#include <functional>
#include <memory>

namespace HalvoraCore {

/// A scheduled action that can be cancelled: a small copyable handle.
/// Cancelling twice, or after the action ran, is harmless.
class ScheduledTask {
public:
    /// What a scheduler hands out behind the handle.
    class Cancellable {
    public:
        virtual ~Cancellable() = default;
        virtual void cancel() = 0;
    };

    ScheduledTask() = default;
    explicit ScheduledTask(std::shared_ptr<Cancellable> task) : task_(std::move(task)) {}

    void cancel() const {
        if (task_) task_->cancel();
    }

private:
    std::shared_ptr<Cancellable> task_;
};

/// Time and timers. The scheduler alone defines time for the core: every
/// deadline starts from `now()`, in seconds.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    virtual double now() const = 0;
    /// Runs `action` once, on the main thread, `after` seconds from now unless
    /// the returned task is cancelled first.
    virtual ScheduledTask schedule(double after, std::function<void()> action) = 0;
};

} // namespace HalvoraCore
