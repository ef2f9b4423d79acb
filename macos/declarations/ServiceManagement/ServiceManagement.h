// The login item of the application itself, macOS 13 and later (Apple's
// SMAppService reference; docs/macos-platform.md for the statuses).
#pragma once

#import <AppKit/AppKit.h>

typedef NSInteger SMAppServiceStatus;
enum {
    SMAppServiceStatusNotRegistered = 0,
    SMAppServiceStatusEnabled = 1,
    SMAppServiceStatusRequiresApproval = 2,
    SMAppServiceStatusNotFound = 3,
};

@interface SMAppService : NSObject
@property(class, readonly) SMAppService* mainAppService;
@property(readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError**)error;
- (BOOL)unregisterAndReturnError:(NSError**)error;
+ (void)openSystemSettingsLoginItems;
@end
