#include <DisplayHardware/VirtualRunLoop.hpp>
#include <algorithm>

namespace DisplayHardware {

namespace {

/// A timer on the virtual clock. Like a run loop's, it is kept alive by its
/// pending firing until it fires for the last time or is invalidated. A
/// repeating one schedules its next firing before running its action, so an
/// action that invalidates it stops it.
class VirtualTimer final : public MainRunLoop::Timer,
                           public std::enable_shared_from_this<VirtualTimer> {
public:
    VirtualTimer(const std::shared_ptr<VirtualClock>& clock, double interval, bool repeats,
                 std::function<void()> action)
        : clock_(clock), interval_(interval), repeats_(repeats), action_(std::move(action)) {}

    void start() { arm(); }
    void invalidate() override {
        valid_ = false;
        next_.cancel();
    }

private:
    void arm() {
        const auto clock = clock_.lock();
        if (!clock) return;
        next_ = clock->schedule(interval_, [self = shared_from_this()] {
            if (!self->valid_) return;
            if (self->repeats_)
                self->arm();
            else
                self->valid_ = false;
            self->action_();
        });
    }

    std::weak_ptr<VirtualClock> clock_; // the clock holds the timer while it is pending
    double interval_;
    bool repeats_;
    std::function<void()> action_;
    bool valid_ = true;
    HalvoraCore::ScheduledTask next_;
};

} // namespace

VirtualRunLoop::VirtualRunLoop(std::shared_ptr<VirtualClock> clock) : clock_(std::move(clock)) {}

double VirtualRunLoop::now() const {
    const auto clock = clock_.lock();
    return clock ? clock->now() : 0;
}

std::shared_ptr<MainRunLoop::Timer> VirtualRunLoop::addTimer(double interval, bool repeats,
                                                             std::function<void()> action) {
    // A repeating timer with no interval would fire forever within one advance.
    const double every = repeats ? std::max(interval, 1e-3) : std::max(interval, 0.0);
    auto timer = std::make_shared<VirtualTimer>(clock_.lock(), every, repeats, std::move(action));
    timer->start();
    return timer;
}

void VirtualRunLoop::dispatchAsync(std::function<void()> action) {
    if (const auto clock = clock_.lock()) clock->schedule(0, std::move(action));
}

} // namespace DisplayHardware
