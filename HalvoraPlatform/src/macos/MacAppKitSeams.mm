// AppKit, Foundation and dispatch: workspace notifications, the main run
// loop, a background queue and another application's preferences. Every
// block the system calls runs through EntryBarrier. Sources: Apple's
// NSWorkspace, NSTimer (tolerance), NSRunLoop, Dispatch, NSRunningApplication
// and Preferences Utilities documentation; docs/macos-platform.md.

#include "CFHelpers.hpp"

#import <AppKit/AppKit.h>
#include <HalvoraPlatform/EntryBarrier.hpp>
#include <HalvoraPlatform/MacPlatform.hpp>
#include <dispatch/dispatch.h>

namespace HalvoraPlatform::MacPlatform {

namespace {

class MacWorkspaceNotifications final : public WorkspaceNotifications {
public:
    void observe(std::function<void(Event)> callback) override {
        NSNotificationCenter* center = [[NSWorkspace sharedWorkspace] notificationCenter];
        const auto shared = std::make_shared<std::function<void(Event)>>(std::move(callback));
        const std::pair<NSNotificationName, Event> names[] = {
            {NSWorkspaceWillSleepNotification, Event::willSleep},
            {NSWorkspaceScreensDidSleepNotification, Event::screensDidSleep},
            {NSWorkspaceDidWakeNotification, Event::didWake},
            {NSWorkspaceScreensDidWakeNotification, Event::screensDidWake},
        };
        for (const auto& [name, event] : names) {
            const Event kind = event;
            id token = [center addObserverForName:name
                                           object:nil
                                            queue:[NSOperationQueue mainQueue]
                                       usingBlock:^(NSNotification*) {
                                         EntryBarrier::guarded("a sleep or wake notification",
                                                               [&] { (*shared)(kind); });
                                       }];
            [tokens_ addObject:token];
        }
    }

private:
    NSMutableArray* tokens_ = [NSMutableArray array];
};

class MacTimer final : public MainRunLoop::Timer {
public:
    explicit MacTimer(NSTimer* timer) : timer_(timer) {}
    void invalidate() override { [timer_ invalidate]; }

private:
    NSTimer* timer_;
};

class MacMainRunLoop final : public MainRunLoop {
public:
    double now() const override { return [[NSDate date] timeIntervalSince1970]; }

    std::shared_ptr<Timer> addTimer(double interval, bool repeats, std::function<void()> action,
                                    double tolerance) override {
        const auto shared = std::make_shared<std::function<void()>>(std::move(action));
        NSTimer* timer = [NSTimer timerWithTimeInterval:interval
                                                repeats:repeats
                                                  block:^(NSTimer*) {
                                                    EntryBarrier::guarded("a timer", *shared);
                                                  }];
        timer.tolerance = tolerance;
        [[NSRunLoop mainRunLoop] addTimer:timer forMode:NSRunLoopCommonModes];
        return std::make_shared<MacTimer>(timer);
    }

    void dispatchAsync(std::function<void()> action) override {
        const auto shared = std::make_shared<std::function<void()>>(std::move(action));
        dispatch_async(dispatch_get_main_queue(), ^{
          EntryBarrier::guarded("work on the main queue", *shared);
        });
    }
};

class MacBackgroundQueue final : public BackgroundQueue {
public:
    void async(std::function<void()> work) override {
        const auto shared = std::make_shared<std::function<void()>>(std::move(work));
        dispatch_async(dispatch_get_global_queue(QOS_CLASS_UTILITY, 0), ^{
          EntryBarrier::guarded("work on a background queue", *shared);
        });
    }
};

class MacOtherApplication final : public OtherApplication {
public:
    bool isRunning(const std::string& bundleID) override {
        NSString* identifier = [NSString stringWithUTF8String:bundleID.c_str()];
        return [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier].count > 0;
    }

    void synchronize(const std::string& domain) override {
        const CFOwned<CFStringRef> app(makeString(domain));
        CFPreferencesAppSynchronize(app.get());
    }

    std::optional<std::vector<std::string>> keys(const std::string& domain) override {
        const CFOwned<CFStringRef> app(makeString(domain));
        const CFOwned<CFArrayRef> list(
            CFPreferencesCopyKeyList(app.get(), kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
        if (!list) return std::nullopt;
        std::vector<std::string> result;
        for (CFIndex i = 0; i < CFArrayGetCount(list.get()); ++i) {
            const auto key = text(CFArrayGetValueAtIndex(list.get(), i));
            if (!key) return std::nullopt;
            result.push_back(*key);
        }
        return result;
    }

    Value value(const std::string& key, const std::string& domain) override {
        const CFOwned<CFStringRef> app(makeString(domain));
        const CFOwned<CFStringRef> name(makeString(key));
        const CFOwned<CFPropertyListRef> found(CFPreferencesCopyAppValue(name.get(), app.get()));
        if (!found) return {};
        if (CFGetTypeID(found.get()) == CFBooleanGetTypeID())
            return CFBooleanGetValue(static_cast<CFBooleanRef>(found.get())) != 0;
        if (const auto string = text(found.get())) return *string;
        return Other{};
    }
};

} // namespace

std::shared_ptr<WorkspaceNotifications> workspaceNotifications() {
    return std::make_shared<MacWorkspaceNotifications>();
}
std::shared_ptr<MainRunLoop> mainRunLoop() {
    return std::make_shared<MacMainRunLoop>();
}
std::shared_ptr<BackgroundQueue> backgroundQueue() {
    return std::make_shared<MacBackgroundQueue>();
}
std::shared_ptr<OtherApplication> otherApplication() {
    return std::make_shared<MacOtherApplication>();
}

} // namespace HalvoraPlatform::MacPlatform
