// Sparkle 2: the standard updater controller, started at once, and its user
// driver's delegate, which forwards gentle reminders to the portable Updater
// (each call through EntryBarrier).
// Sources: Sparkle's SPUStandardUpdaterController and
// SPUStandardUserDriverDelegate documentation; docs/macos-platform.md.

#include "MacServices.hpp"

#import <AppKit/AppKit.h>
#import <Sparkle/Sparkle.h>
#include <HalvoraPlatform/EntryBarrier.hpp>

@interface HalvoraUpdaterDelegate : NSObject <SPUStandardUserDriverDelegate>
- (void)forwardTo:(std::weak_ptr<HalvoraPro::Updater>)updater;
@end

@implementation HalvoraUpdaterDelegate {
    std::weak_ptr<HalvoraPro::Updater> _updater;
}

- (void)forwardTo:(std::weak_ptr<HalvoraPro::Updater>)updater {
    _updater = std::move(updater);
}

- (BOOL)supportsGentleScheduledUpdateReminders {
    bool supports = true;
    HalvoraPlatform::EntryBarrier::guarded("the updater's question about reminders", [&] {
        const auto updater = _updater.lock();
        supports = !updater || updater->supportsGentleScheduledUpdateReminders();
    });
    return supports ? YES : NO;
}

- (BOOL)standardUserDriverShouldHandleShowingScheduledUpdate:(SUAppcastItem*)update
                                         andInImmediateFocus:(BOOL)immediateFocus {
    (void)update;
    bool handles = immediateFocus == YES;
    HalvoraPlatform::EntryBarrier::guarded("the updater's question about a scheduled update", [&] {
        if (const auto updater = _updater.lock())
            handles = updater->shouldHandleShowingScheduledUpdate(immediateFocus == YES);
    });
    return handles ? YES : NO;
}

- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate
                                        forUpdate:(SUAppcastItem*)update
                                            state:(SPUUserUpdateState*)state {
    (void)state;
    const char* version = [update.displayVersionString UTF8String];
    HalvoraPlatform::EntryBarrier::guarded("the updater showing an update", [&] {
        if (const auto updater = _updater.lock())
            updater->willHandleShowingUpdate(handleShowingUpdate == YES, version ? version : "");
    });
}

- (void)standardUserDriverDidReceiveUserAttentionForUpdate:(SUAppcastItem*)update {
    (void)update;
    HalvoraPlatform::EntryBarrier::guarded("the updater's attention", [&] {
        if (const auto updater = _updater.lock()) updater->didReceiveUserAttention();
    });
}

- (void)standardUserDriverWillFinishUpdateSession {
    HalvoraPlatform::EntryBarrier::guarded("the updater's session end", [&] {
        if (const auto updater = _updater.lock()) updater->willFinishUpdateSession();
    });
}

@end

namespace HalvoraPro::MacServices {

namespace {

class SparkleUpdaterDriver final : public UpdaterDriver {
public:
    SparkleUpdaterDriver()
        : delegate_([[HalvoraUpdaterDelegate alloc] init]),
          controller_([[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                    updaterDelegate:nil
                                                                 userDriverDelegate:delegate_]) {}
    bool canCheckForUpdates() const override { return controller_.updater.canCheckForUpdates == YES; }
    void checkForUpdates() override { [controller_ checkForUpdates:nil]; }
    HalvoraUpdaterDelegate* delegate() const { return delegate_; }

private:
    HalvoraUpdaterDelegate* delegate_;
    SPUStandardUpdaterController* controller_;
};

} // namespace

std::shared_ptr<UpdaterDriver> UpdaterDriverFactory::make() { return std::make_shared<SparkleUpdaterDriver>(); }

void UpdaterDriverFactory::attach(UpdaterDriver& driver, std::weak_ptr<Updater> updater) {
    if (auto* sparkle = dynamic_cast<SparkleUpdaterDriver*>(&driver)) [sparkle->delegate() forwardTo:updater];
}

} // namespace HalvoraPro::MacServices
