#include <HalvoraSimulation/VirtualRunLoop.hpp>
#include <algorithm>

namespace HalvoraSimulation {

namespace {

/// A timer on the virtual clock. Like a run loop's, it is kept alive by its
/// pending firing until it fires for the last time or is invalidated. A
/// repeating one schedules its next firing before running its action, so an
/// action that invalidates it stops it.
class VirtualTimer final : public HalvoraPlatform::MainRunLoop::Timer,
                           public std::enable_shared_from_this<VirtualTimer> {
public:
    VirtualTimer(const std::shared_ptr<VirtualClock>& clock, VirtualRunLoop::TimerSetting setting,
                 std::function<void()> action, std::shared_ptr<VirtualRunLoop::Stats> stats)
        : clock_(clock), setting_(setting), action_(std::move(action)), stats_(std::move(stats)) {}

    void start() { arm(); }
    void invalidate() override {
        valid_ = false;
        next_.cancel();
    }
    bool isValid() const { return valid_; }
    const VirtualRunLoop::TimerSetting& setting() const { return setting_; }

private:
    void arm() {
        const auto clock = clock_.lock();
        if (!clock) return;
        next_ = clock->schedule(setting_.interval, [self = shared_from_this()] {
            if (!self->valid_) return;
            ++self->stats_->firings;
            if (self->setting_.repeats)
                self->arm();
            else
                self->valid_ = false;
            self->action_();
        });
    }

    std::weak_ptr<VirtualClock> clock_; // the clock holds the timer while it is pending
    VirtualRunLoop::TimerSetting setting_;
    std::function<void()> action_;
    std::shared_ptr<VirtualRunLoop::Stats> stats_;
    bool valid_ = true;
    HalvoraCore::ScheduledTask next_;
};

} // namespace

VirtualRunLoop::VirtualRunLoop(std::shared_ptr<VirtualClock> clock) : clock_(std::move(clock)) {}

double VirtualRunLoop::now() const {
    const auto clock = clock_.lock();
    return clock ? clock->now() : 0;
}

std::shared_ptr<HalvoraPlatform::MainRunLoop::Timer> VirtualRunLoop::addTimer(double interval, bool repeats,
                                                             std::function<void()> action,
                                                             double tolerance) {
    // A repeating timer with no interval would fire forever within one advance.
    const double every = repeats ? std::max(interval, 1e-3) : std::max(interval, 0.0);
    auto timer = std::make_shared<VirtualTimer>(
        clock_.lock(), TimerSetting{every, repeats, tolerance}, std::move(action), stats_);
    timer->start();
    auto& kept = stats_->timers;
    kept.erase(std::remove_if(kept.begin(), kept.end(),
                              [](const std::weak_ptr<Timer>& t) {
                                  const auto alive = t.lock();
                                  return !alive ||
                                         !static_cast<const VirtualTimer&>(*alive).isValid();
                              }),
               kept.end());
    kept.push_back(timer);
    return timer;
}

std::vector<VirtualRunLoop::TimerSetting> VirtualRunLoop::timers() const {
    std::vector<TimerSetting> set;
    for (const auto& t : stats_->timers)
        if (const auto alive = t.lock();
            alive && static_cast<const VirtualTimer&>(*alive).isValid())
            set.push_back(static_cast<const VirtualTimer&>(*alive).setting());
    return set;
}

void VirtualRunLoop::dispatchAsync(std::function<void()> action) {
    if (const auto clock = clock_.lock()) clock->schedule(0, std::move(action));
}

} // namespace HalvoraSimulation
