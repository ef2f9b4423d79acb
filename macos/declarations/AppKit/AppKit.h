// Foundation and AppKit, as far as the macOS sources use them (Apple's
// Foundation and AppKit references).
#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef signed char BOOL;
#define nil nullptr
#define YES ((BOOL)1)
#define NO ((BOOL)0)
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;

@interface NSObject
+ (instancetype)alloc;
- (instancetype)init;
@end

@interface NSString : NSObject
+ (instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@end

typedef NSString* NSNotificationName;
typedef NSString* NSRunLoopMode;

@interface NSArray<ObjectType> : NSObject
@property(readonly) NSUInteger count;
@end

@interface NSMutableArray<ObjectType> : NSArray<ObjectType>
+ (instancetype)array;
- (void)addObject:(ObjectType)anObject;
@end

@interface NSDate : NSObject
+ (instancetype)date;
@property(readonly) NSTimeInterval timeIntervalSince1970;
@end

@interface NSNotification : NSObject
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
@end

@interface NSNotificationCenter : NSObject
- (id)addObserverForName:(NSNotificationName)name
                  object:(id)obj
                   queue:(NSOperationQueue*)queue
              usingBlock:(void (^)(NSNotification* notification))block;
@end

@interface NSTimer : NSObject
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval
                          repeats:(BOOL)repeats
                            block:(void (^)(NSTimer* timer))block;
@property NSTimeInterval tolerance;
- (void)invalidate;
@end

@interface NSRunLoop : NSObject
@property(class, readonly, strong) NSRunLoop* mainRunLoop;
- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode;
@end

extern NSRunLoopMode const NSRunLoopCommonModes;

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@end

extern NSNotificationName const NSWorkspaceWillSleepNotification;
extern NSNotificationName const NSWorkspaceDidWakeNotification;
extern NSNotificationName const NSWorkspaceScreensDidSleepNotification;
extern NSNotificationName const NSWorkspaceScreensDidWakeNotification;

@interface NSRunningApplication : NSObject
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier;
@end
