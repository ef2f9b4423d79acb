// The entry point of Halvora Pro on a Mac: an accessory application (no Dock
// icon) whose objects are all made by Application::start, in the documented
// order (the update framework starts after the scheduler and the controller),
// then the event loop. Sources: Apple's NSApplication and NSEvent
// documentation; docs/macos-platform.md.

#include "MacServices.hpp"
#include "MacShellView.hpp"

#import <AppKit/AppKit.h>
#include <HalvoraPlatform/EntryBarrier.hpp>
#include <HalvoraPlatform/MacPlatform.hpp>
#include <HalvoraPlatform/PosixProcessSpawner.hpp>
#include <HalvoraPro/Application.hpp>
#include <cstdio>
#include <dispatch/dispatch.h>
#include <exception>
#include <unistd.h>

/// The application's delegate: it has no behaviour of its own.
@interface HalvoraAppDelegate : NSObject <NSApplicationDelegate>
@end

@implementation HalvoraAppDelegate
@end

int main(int, const char*[]) {
    @autoreleasepool {
        NSApplication* app = [NSApplication sharedApplication];
        [app setActivationPolicy:NSApplicationActivationPolicyAccessory];
        const bool optionHeld = ([NSEvent modifierFlags] & NSEventModifierFlagOption) != 0;

        using namespace HalvoraPro;
        const auto localize = MacServices::localizer();
        const auto view = std::make_shared<MacShellView>(localize);
        namespace Mac = HalvoraPlatform::MacPlatform;
        Platform platform;
        platform.displays = {Mac::avServiceRegistry(), Mac::coreGraphicsDisplays(), Mac::reconfigurationEvents(),
                             Mac::portEventLogs(),     Mac::workspaceNotifications(), Mac::mainRunLoop()};
        platform.backgroundQueue = Mac::backgroundQueue();
        platform.processes = std::make_shared<HalvoraPlatform::PosixProcessSpawner>();
        platform.otherApplications = Mac::otherApplication();
        platform.overrideServiceLabel = MacServices::overrideServiceLabel();
        platform.userID = [] { return static_cast<unsigned>(::getuid()); };
        platform.homeLookup = HalvoraPlatform::LiveSettingsStore::HomeLookup::system();
        platform.view = view;
        platform.defaults = MacServices::userDefaults();
        platform.loginItemService = MacServices::loginItemService();
        platform.startUpdaterDriver = [] { return MacServices::UpdaterDriverFactory::make(); };
        platform.log = HalvoraPlatform::systemLog;
        platform.localize = localize;

        // A barrier may stop an exception on a background queue, and the
        // report shows an alert: AppKit only on the main thread, so it goes
        // there, with the exception. The handler is in place before anything
        // can run on another queue, and `application` is read and set on the
        // main thread only (the block runs once the event loop does).
        static Application* application = nullptr;
        HalvoraPlatform::EntryBarrier::setHandler([](std::string_view entry) {
            const std::exception_ptr error = std::current_exception();
            const std::string name(entry);
            dispatch_async(dispatch_get_main_queue(), ^{
              HalvoraPlatform::EntryBarrier::guarded("reporting an error", [&] {
                  try {
                      std::rethrow_exception(error);
                  } catch (...) {
                      if (application)
                          application->exceptionEscaped(name);
                      else
                          std::fprintf(stderr, "%s\n",
                                       HalvoraPlatform::EntryBarrier::describeCurrentException(name).c_str());
                  }
              });
            });
        });

        // Never destroyed, on purpose: [NSApp terminate:] ends the process with
        // exit(), and a conflict check on a background queue may still run then;
        // it must not find the objects it reports to destroyed.
        application = Application::startOrStop(std::move(platform), Application::startFor(optionHeld)).release();
        MacServices::UpdaterDriverFactory::attach(*application->updaterDriver(), application->updater());
        view->attach(application->menu());

        static HalvoraAppDelegate* delegate = [[HalvoraAppDelegate alloc] init];
        app.delegate = delegate;
        [app run];
    }
    return 0;
}
