#pragma once

#include <HalvoraCore/Scheduler.hpp>

#include <functional>
#include <memory>
#include <optional>

namespace HalvoraCore {

/// The controller's timers: every action runs only while the controller that
/// owns these timers is alive, so a released controller's pending work does
/// nothing. The controller's policies share one set and schedule their own
/// steps on it.
class OwnedTimers {
public:
    explicit OwnedTimers(std::shared_ptr<Scheduler> scheduler) : scheduler_(std::move(scheduler)) {}

    /// The object whose lifetime the actions are tied to (set once it is owned
    /// by a shared_ptr).
    void tieTo(std::weak_ptr<const void> owner) { owner_ = std::move(owner); }

    double now() const { return scheduler_->now(); }
    /// Runs `action` after `seconds`, unless the owner is gone by then.
    ScheduledTask after(double seconds, std::function<void()> action);
    /// Replaces a single-slot timer: cancels the old task, stores the new one.
    void restart(std::optional<ScheduledTask>& slot, double seconds, std::function<void()> action);
    static void cancel(std::optional<ScheduledTask>& slot);

private:
    std::shared_ptr<Scheduler> scheduler_;
    std::weak_ptr<const void> owner_;
};

} // namespace HalvoraCore
