// A deliberate mistake: an AppKit call that macOS 14 introduced, used without
// an availability check in an application that runs on macOS 13.

#import <AppKit/AppKit.h>

void plantedActivation() {
    [NSApp activate];
}
