// Sparkle 2, as far as the macOS sources use it (Sparkle's
// SPUStandardUpdaterController, SPUUpdater, SPUStandardUserDriverDelegate and
// SUAppcastItem documentation; docs/macos-platform.md).
#pragma once

#import <AppKit/AppKit.h>

@interface SUAppcastItem : NSObject
@property(readonly, copy) NSString* displayVersionString;
@end

@interface SPUUserUpdateState : NSObject
@end

@interface SPUUpdater : NSObject
@property(readonly) BOOL canCheckForUpdates;
@end

@protocol SPUUpdaterDelegate <NSObject>
@end

@protocol SPUStandardUserDriverDelegate <NSObject>
@optional
@property(readonly) BOOL supportsGentleScheduledUpdateReminders;
- (BOOL)standardUserDriverShouldHandleShowingScheduledUpdate:(SUAppcastItem*)update
                                         andInImmediateFocus:(BOOL)immediateFocus;
- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate
                                        forUpdate:(SUAppcastItem*)update
                                            state:(SPUUserUpdateState*)state;
- (void)standardUserDriverDidReceiveUserAttentionForUpdate:(SUAppcastItem*)update;
- (void)standardUserDriverWillFinishUpdateSession;
@end

@interface SPUStandardUpdaterController : NSObject
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id<SPUUpdaterDelegate>)updaterDelegate
                     userDriverDelegate:(id<SPUStandardUserDriverDelegate>)userDriverDelegate;
@property(readonly) SPUUpdater* updater;
- (void)checkForUpdates:(id)sender;
@end
