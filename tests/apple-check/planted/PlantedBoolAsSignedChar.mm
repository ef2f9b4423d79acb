// A deliberate mistake: a block that takes the stop flag as a signed char,
// which compiles only where BOOL is a signed char (Intel). On arm64, the
// architecture the application is built for, BOOL is bool.

#import <AppKit/AppKit.h>

void plantedBoolMistake(NSArray<NSView*>* views) {
    [views enumerateObjectsUsingBlock:^(NSView* view, NSUInteger index, signed char* stop) {
      (void)view;
      *stop = index > 2 ? 1 : 0;
    }];
}
