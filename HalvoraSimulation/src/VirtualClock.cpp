#include <HalvoraSimulation/VirtualClock.hpp>
#include <algorithm>

namespace HalvoraSimulation {

struct VirtualClock::Entry : HalvoraCore::ScheduledTask::Cancellable {
    double deadline = 0;
    std::uint64_t sequence = 0;
    std::function<void()> action;
    bool done = false; // ran or cancelled
    /// The clock's count of cancelled tasks in its queue; empty once out of it.
    std::weak_ptr<std::size_t> cancelledInQueue;

    void cancel() override {
        if (!done)
            if (const auto count = cancelledInQueue.lock()) ++*count;
        done = true;
        action = nullptr; // release what the action holds
    }
};

bool VirtualClock::Later::operator()(const std::shared_ptr<Entry>& a,
                                     const std::shared_ptr<Entry>& b) const {
    if (a->deadline != b->deadline) return a->deadline > b->deadline;
    return a->sequence > b->sequence;
}

VirtualClock::~VirtualClock() {
    for (const auto& e : queue_) {
        e->cancelledInQueue.reset();
        e->cancel();
    }
}

HalvoraCore::ScheduledTask VirtualClock::schedule(double after, std::function<void()> action) {
    auto entry = std::make_shared<Entry>();
    entry->deadline = now_ + std::max(0.0, after);
    entry->sequence = sequence_++;
    entry->action = std::move(action);
    entry->cancelledInQueue = cancelled_;
    compactIfMostlyCancelled();
    queue_.push_back(entry);
    std::push_heap(queue_.begin(), queue_.end(), Later{});
    return HalvoraCore::ScheduledTask(entry);
}

void VirtualClock::dropCancelledFront() const {
    while (!queue_.empty() && queue_.front()->done) {
        std::pop_heap(queue_.begin(), queue_.end(), Later{});
        queue_.back()->cancelledInQueue.reset();
        queue_.pop_back();
        --*cancelled_;
    }
}

void VirtualClock::compactIfMostlyCancelled() {
    // Timers restarted over and over leave their cancelled firings behind.
    if (queue_.size() < 64 || *cancelled_ * 2 < queue_.size()) return;
    std::erase_if(queue_, [](const auto& e) {
        if (e->done) e->cancelledInQueue.reset();
        return e->done;
    });
    std::make_heap(queue_.begin(), queue_.end(), Later{});
    *cancelled_ = 0;
}

void VirtualClock::advanceTo(double time) {
    for (;;) {
        dropCancelledFront();
        if (queue_.empty() || queue_.front()->deadline > time) break;
        std::pop_heap(queue_.begin(), queue_.end(), Later{});
        const std::shared_ptr<Entry> entry = std::move(queue_.back());
        queue_.pop_back();
        entry->cancelledInQueue.reset();
        now_ = std::max(now_, entry->deadline);
        entry->done = true;
        auto action = std::move(entry->action);
        if (action) action();
        compactIfMostlyCancelled();
    }
    now_ = std::max(now_, time);
}

void VirtualClock::advance(double seconds) {
    advanceTo(now_ + seconds);
}

std::size_t VirtualClock::pendingCount() const {
    return queue_.size() - *cancelled_;
}

std::optional<double> VirtualClock::nextDeadline() const {
    dropCancelledFront();
    if (queue_.empty()) return std::nullopt;
    return queue_.front()->deadline;
}

} // namespace HalvoraSimulation
