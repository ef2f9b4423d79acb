// Quartz Display Services, as far as the macOS sources use them (Apple's CoreGraphics reference).
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Geometry and colour (Apple's CGGeometry and CGColor references).
typedef double CGFloat;
struct CGPoint {
    CGFloat x;
    CGFloat y;
};
typedef struct CGPoint CGPoint;
struct CGSize {
    CGFloat width;
    CGFloat height;
};
typedef struct CGSize CGSize;
struct CGRect {
    CGPoint origin;
    CGSize size;
};
typedef struct CGRect CGRect;
static inline CGPoint CGPointMake(CGFloat x, CGFloat y) {
    CGPoint p;
    p.x = x;
    p.y = y;
    return p;
}
typedef struct CF_BRIDGED_TYPE(id) CGColor* CGColorRef;

typedef uint32_t CGDirectDisplayID;
typedef CF_ENUM(int32_t, CGError){
    kCGErrorSuccess = 0,
    kCGErrorFailure = 1000,
    kCGErrorIllegalArgument = 1001,
};
typedef CF_OPTIONS(uint32_t, CGConfigureOption){
    kCGConfigureForAppOnly = 0,
    kCGConfigureForSession = 1,
    kCGConfigurePermanently = 2,
};
typedef CF_OPTIONS(uint32_t, CGDisplayChangeSummaryFlags){
    kCGDisplayBeginConfigurationFlag = 1 << 0,
    kCGDisplayMovedFlag = 1 << 1,
    kCGDisplaySetMainFlag = 1 << 2,
    kCGDisplaySetModeFlag = 1 << 3,
    kCGDisplayAddFlag = 1 << 4,
    kCGDisplayRemoveFlag = 1 << 5,
    kCGDisplayEnabledFlag = 1 << 8,
    kCGDisplayDisabledFlag = 1 << 9,
    kCGDisplayMirrorFlag = 1 << 10,
    kCGDisplayUnMirrorFlag = 1 << 11,
    kCGDisplayDesktopShapeChangedFlag = 1 << 12,
};
typedef int boolean_t;
typedef struct CGDisplayMode* CGDisplayModeRef;
typedef struct _CGDisplayConfigRef* CGDisplayConfigRef;
typedef void (*CGDisplayReconfigurationCallBack)(CGDirectDisplayID display, CGDisplayChangeSummaryFlags flags,
                                                 void* userInfo);


extern const CFStringRef kCGDisplayShowDuplicateLowResolutionModes;

CGError CGGetOnlineDisplayList(uint32_t maxDisplays, CGDirectDisplayID* onlineDisplays, uint32_t* displayCount);
boolean_t CGDisplayIsBuiltin(CGDirectDisplayID display);
uint32_t CGDisplayVendorNumber(CGDirectDisplayID display);
uint32_t CGDisplayModelNumber(CGDirectDisplayID display);
uint32_t CGDisplaySerialNumber(CGDirectDisplayID display);
CFArrayRef CGDisplayCopyAllDisplayModes(CGDirectDisplayID display, CFDictionaryRef options);
CGDisplayModeRef CGDisplayCopyDisplayMode(CGDirectDisplayID display);
CGDisplayModeRef CGDisplayModeRetain(CGDisplayModeRef mode);
void CGDisplayModeRelease(CGDisplayModeRef mode);
size_t CGDisplayModeGetWidth(CGDisplayModeRef mode);
size_t CGDisplayModeGetHeight(CGDisplayModeRef mode);
size_t CGDisplayModeGetPixelWidth(CGDisplayModeRef mode);
double CGDisplayModeGetRefreshRate(CGDisplayModeRef mode);
bool CGDisplayModeIsUsableForDesktopGUI(CGDisplayModeRef mode);
CGError CGBeginDisplayConfiguration(CGDisplayConfigRef* config);
CGError CGConfigureDisplayWithDisplayMode(CGDisplayConfigRef config, CGDirectDisplayID display,
                                          CGDisplayModeRef mode, CFDictionaryRef options);
CGError CGCompleteDisplayConfiguration(CGDisplayConfigRef config, CGConfigureOption option);
CGError CGDisplayRegisterReconfigurationCallback(CGDisplayReconfigurationCallBack callback, void* userInfo);

#ifdef __cplusplus
}
#endif
