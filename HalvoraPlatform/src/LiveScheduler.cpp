#include <HalvoraPlatform/LiveScheduler.hpp>
#include <algorithm>

namespace HalvoraPlatform {

namespace {

/// The handle of one task: cancelling invalidates its timer.
class TimerTask final : public HalvoraCore::ScheduledTask::Cancellable {
public:
    explicit TimerTask(std::shared_ptr<HalvoraPlatform::MainRunLoop::Timer> timer)
        : timer_(std::move(timer)) {}
    void cancel() override {
        if (timer_) timer_->invalidate();
    }

private:
    std::shared_ptr<HalvoraPlatform::MainRunLoop::Timer> timer_;
};

} // namespace

LiveScheduler::LiveScheduler(std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop)
    : runLoop_(std::move(runLoop)) {}

double LiveScheduler::now() const {
    return runLoop_->now();
}

HalvoraCore::ScheduledTask LiveScheduler::schedule(double after, std::function<void()> action) {
    // A negative delay is due at once; it still runs on a later turn of the run loop.
    // The core's delays are exact: a countdown, a settle, a debounce.
    auto timer = runLoop_->addTimer(std::max(after, 0.0), false, std::move(action), 0);
    return HalvoraCore::ScheduledTask(std::make_shared<TimerTask>(std::move(timer)));
}

} // namespace HalvoraPlatform
