#include "VirtualScheduler.hpp"

#include <algorithm>

namespace TestDoubles {

struct VirtualScheduler::Entry : HalvoraCore::ScheduledTask::Cancellable {
    double deadline = 0;
    std::uint64_t sequence = 0;
    std::function<void()> action;
    bool done = false; // ran or cancelled

    void cancel() override {
        done = true;
        action = nullptr; // release what the action holds
    }
};

HalvoraCore::ScheduledTask VirtualScheduler::schedule(double after, std::function<void()> action) {
    auto entry = std::make_shared<Entry>();
    entry->deadline = now_ + std::max(0.0, after);
    entry->sequence = sequence_++;
    entry->action = std::move(action);
    entries_.push_back(entry);
    return HalvoraCore::ScheduledTask(entry);
}

std::shared_ptr<VirtualScheduler::Entry> VirtualScheduler::nextDue(double until) const {
    std::shared_ptr<Entry> next;
    for (const auto& e : entries_) {
        if (e->done || e->deadline > until) continue;
        if (!next || e->deadline < next->deadline ||
            (e->deadline == next->deadline && e->sequence < next->sequence))
            next = e;
    }
    return next;
}

void VirtualScheduler::advanceTo(double time) {
    while (const auto entry = nextDue(time)) {
        now_ = std::max(now_, entry->deadline);
        entry->done = true;
        auto action = std::move(entry->action);
        if (action) action();
    }
    std::erase_if(entries_, [](const auto& e) { return e->done; });
    now_ = std::max(now_, time);
}

void VirtualScheduler::advance(double seconds) { advanceTo(now_ + seconds); }

std::size_t VirtualScheduler::pendingCount() const {
    return static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), [](const auto& e) { return !e->done; }));
}

std::optional<double> VirtualScheduler::nextDeadline() const {
    std::optional<double> next;
    for (const auto& e : entries_)
        if (!e->done && (!next || e->deadline < *next)) next = e->deadline;
    return next;
}

} // namespace TestDoubles
