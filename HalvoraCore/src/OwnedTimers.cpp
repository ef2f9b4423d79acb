#include <HalvoraCore/OwnedTimers.hpp>

namespace HalvoraCore {

ScheduledTask OwnedTimers::after(double seconds, std::function<void()> action) {
    return scheduler_->schedule(seconds, [owner = owner_, action = std::move(action)] {
        if (const auto alive = owner.lock()) action();
    });
}

void OwnedTimers::restart(std::optional<ScheduledTask>& slot, double seconds, std::function<void()> action) {
    cancel(slot);
    slot = after(seconds, std::move(action));
}

void OwnedTimers::cancel(std::optional<ScheduledTask>& slot) {
    if (slot) slot->cancel();
    slot.reset();
}

} // namespace HalvoraCore
