// A deliberate mistake: a control size given where a progress indicator's
// style belongs. Both are small integers underneath; as the typed
// enumerations Apple declares them (NS_ENUM), they do not mix.

#import <AppKit/AppKit.h>

void plantedEnumMixup(NSProgressIndicator* bar) {
    bar.style = NSControlSizeSmall; // meant: bar.controlSize
}
