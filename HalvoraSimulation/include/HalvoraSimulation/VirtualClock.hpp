#pragma once

#include <HalvoraCore/Scheduler.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace HalvoraSimulation {

/// A scheduler whose clock moves only when its owner advances it. Due tasks run
/// in deadline order, ties in the order they were scheduled; tasks scheduled
/// by running tasks run within the same advance when they fall due in it.
/// Cancelled tasks never run. The tasks wait in a priority queue, so a run
/// with many timers costs a logarithm per task, not a scan of all of them.
class VirtualClock final : public HalvoraCore::Scheduler {
public:
    explicit VirtualClock(double start = 0) : now_(start) {}
    /// Releases what pending tasks hold (a task may hold a timer that holds it).
    ~VirtualClock() override;
    VirtualClock(const VirtualClock&) = delete;
    VirtualClock& operator=(const VirtualClock&) = delete;

    double now() const override { return now_; }
    HalvoraCore::ScheduledTask schedule(double after, std::function<void()> action) override;

    /// Moves the clock `seconds` forward, running every task due on the way
    /// (the clock stands at each task's deadline while it runs).
    void advance(double seconds);
    void advanceTo(double time);

    /// Tasks that are scheduled and neither ran nor were cancelled.
    std::size_t pendingCount() const;
    std::optional<double> nextDeadline() const;

private:
    struct Entry;
    /// Orders the queue: the earliest deadline first, then the earliest scheduled.
    struct Later {
        bool operator()(const std::shared_ptr<Entry>& a, const std::shared_ptr<Entry>& b) const;
    };
    /// Drops cancelled tasks from the front of the queue.
    void dropCancelledFront() const;
    /// Rebuilds the queue without its cancelled tasks once they are most of it.
    void compactIfMostlyCancelled();

    double now_;
    std::uint64_t sequence_ = 0;
    /// A heap by `Later`; cancelled tasks stay in it until they reach the front
    /// or are compacted away.
    mutable std::vector<std::shared_ptr<Entry>> queue_;
    /// How many tasks in the queue were cancelled (shared with the tasks).
    std::shared_ptr<std::size_t> cancelled_ = std::make_shared<std::size_t>(0);
};

} // namespace HalvoraSimulation
