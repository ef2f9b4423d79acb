#include <DisplayHardware/VirtualClock.hpp>

#include <algorithm>

namespace DisplayHardware {

struct VirtualClock::Entry : HalvoraCore::ScheduledTask::Cancellable {
    double deadline = 0;
    std::uint64_t sequence = 0;
    std::function<void()> action;
    bool done = false; // ran or cancelled

    void cancel() override {
        done = true;
        action = nullptr; // release what the action holds
    }
};

VirtualClock::~VirtualClock() {
    for (const auto& e : entries_) e->cancel();
}

HalvoraCore::ScheduledTask VirtualClock::schedule(double after, std::function<void()> action) {
    auto entry = std::make_shared<Entry>();
    entry->deadline = now_ + std::max(0.0, after);
    entry->sequence = sequence_++;
    entry->action = std::move(action);
    entries_.push_back(entry);
    return HalvoraCore::ScheduledTask(entry);
}

std::shared_ptr<VirtualClock::Entry> VirtualClock::nextDue(double until) const {
    std::shared_ptr<Entry> next;
    for (const auto& e : entries_) {
        if (e->done || e->deadline > until) continue;
        if (!next || e->deadline < next->deadline ||
            (e->deadline == next->deadline && e->sequence < next->sequence))
            next = e;
    }
    return next;
}

void VirtualClock::advanceTo(double time) {
    while (const auto entry = nextDue(time)) {
        now_ = std::max(now_, entry->deadline);
        entry->done = true;
        auto action = std::move(entry->action);
        if (action) action();
    }
    std::erase_if(entries_, [](const auto& e) { return e->done; });
    now_ = std::max(now_, time);
}

void VirtualClock::advance(double seconds) { advanceTo(now_ + seconds); }

std::size_t VirtualClock::pendingCount() const {
    return static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), [](const auto& e) { return !e->done; }));
}

std::optional<double> VirtualClock::nextDeadline() const {
    std::optional<double> next;
    for (const auto& e : entries_)
        if (!e->done && (!next || e->deadline < *next)) next = e->deadline;
    return next;
}

} // namespace DisplayHardware
