#pragma once

#include <HalvoraCore/Scheduler.hpp>
#include <HalvoraPlatform/seams/MainRunLoop.hpp>
#include <memory>

namespace HalvoraPlatform {

/// The core's clock and timers on the main run loop: `now` is the wall clock;
/// each task is a one-shot timer with tolerance 0 in the common modes (so it
/// also fires while a menu is open or an alert runs), cancelled by
/// invalidating it.
class LiveScheduler final : public HalvoraCore::Scheduler {
public:
    explicit LiveScheduler(std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop);

    double now() const override;
    HalvoraCore::ScheduledTask schedule(double after, std::function<void()> action) override;

private:
    std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop_;
};

} // namespace HalvoraPlatform
