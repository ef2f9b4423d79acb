// A deliberate mistake: CoreFoundation data taken for a string. CFDataRef is
// toll-free bridged to NSData (CF_BRIDGED_TYPE), not to NSString.

#import <AppKit/AppKit.h>

NSString* plantedBridgeCast(CFDataRef edid) {
    return (__bridge NSString*)edid;
}
