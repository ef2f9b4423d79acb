#pragma once

#include <functional>

namespace HalvoraPlatform {

/// The sleep and wake notifications of NSWorkspace's own notification centre.
class WorkspaceNotifications {
public:
    enum class Event { willSleep, screensDidSleep, didWake, screensDidWake };

    virtual ~WorkspaceNotifications() = default;
    /// Calls `callback` for each of the four notifications, on the main thread.
    virtual void observe(std::function<void(Event)> callback) = 0;
};

} // namespace HalvoraPlatform
