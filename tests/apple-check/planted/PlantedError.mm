// A deliberate type error: the syntax check of the Apple-only sources must
// reject this file (CTest expects it to fail), which shows that the check
// catches mistakes rather than passing everything.

#include <CoreGraphics/CoreGraphics.h>

#import <AppKit/AppKit.h>

bool plantedError() {
    NSTimer* timer = [NSTimer timerWithTimeInterval:1 repeats:NO block:^(NSTimer*) {}];
    return CGDisplayIsBuiltin(timer) != 0; // an NSTimer is no display ID
}
