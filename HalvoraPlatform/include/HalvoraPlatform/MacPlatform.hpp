#pragma once

// The raw seams on macOS: each is the platform's own calls, one for one, with
// nothing to decide. Built only on Apple platforms.

#include <HalvoraPlatform/seams/AVServiceRegistry.hpp>
#include <HalvoraPlatform/seams/BackgroundQueue.hpp>
#include <HalvoraPlatform/seams/CoreGraphicsDisplays.hpp>
#include <HalvoraPlatform/seams/MainRunLoop.hpp>
#include <HalvoraPlatform/seams/OtherApplication.hpp>
#include <HalvoraPlatform/seams/PortEventLogs.hpp>
#include <HalvoraPlatform/seams/WorkspaceNotifications.hpp>
#include <memory>

namespace HalvoraPlatform::MacPlatform {

/// IOKit: DCPAVServiceProxy entries and the IOAVService calls. Every
/// IOAVService call is looked up at run time: on a system without one, its
/// calls fail with kIOReturnUnsupported (and missingCalls names it) instead
/// of the application failing to launch.
std::shared_ptr<AVServiceRegistry> avServiceRegistry();
/// CoreGraphics displays, modes and display configuration.
std::shared_ptr<CoreGraphicsDisplays> coreGraphicsDisplays();
/// CGDisplayRegisterReconfigurationCallback.
std::shared_ptr<ReconfigurationEvents> reconfigurationEvents();
/// The "EventLog" property of display-port registry entries.
std::shared_ptr<PortEventLogs> portEventLogs();
/// NSWorkspace's sleep and wake notifications, on the main queue.
std::shared_ptr<WorkspaceNotifications> workspaceNotifications();
/// NSDate, NSTimer on the main run loop in the common modes, and the main dispatch queue.
std::shared_ptr<MainRunLoop> mainRunLoop();
/// A global dispatch queue of utility quality of service.
std::shared_ptr<BackgroundQueue> backgroundQueue();
/// NSRunningApplication and CFPreferences of another application.
std::shared_ptr<OtherApplication> otherApplication();

} // namespace HalvoraPlatform::MacPlatform
