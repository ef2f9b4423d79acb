// Foundation and AppKit, as far as the macOS sources use them (Apple's
// Foundation and AppKit references).
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

typedef signed char BOOL;
#define nil nullptr
#define YES ((BOOL)1)
#define NO ((BOOL)0)
typedef unsigned long NSUInteger;
typedef long NSInteger;
typedef double NSTimeInterval;

// --- Foundation -------------------------------------------------------------

@class NSString;

@protocol NSObject
- (BOOL)isKindOfClass:(Class)aClass;
@end

@interface NSObject <NSObject>
+ (instancetype)alloc;
+ (instancetype)new;
+ (Class)class;
- (instancetype)init;
@end

@interface NSString : NSObject
+ (instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@property(readonly) const char* UTF8String;
@end

@interface NSNumber : NSObject
@property(readonly) unsigned int unsignedIntValue;
@end

@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@end

typedef NSString* NSNotificationName;
typedef NSString* NSRunLoopMode;

@interface NSArray<ObjectType> : NSObject
+ (instancetype)arrayWithObjects:(const ObjectType[])objects count:(NSUInteger)cnt;
@property(readonly) NSUInteger count;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)idx;
@property(readonly) ObjectType firstObject;
@end

@interface NSMutableArray<ObjectType> : NSArray<ObjectType>
+ (instancetype)array;
- (void)addObject:(ObjectType)anObject;
@end

@interface NSDictionary<KeyType, ObjectType> : NSObject
- (ObjectType)objectForKeyedSubscript:(KeyType)key;
@end

typedef NSString* NSDeviceDescriptionKey;

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
- (NSString*)localizedStringForKey:(NSString*)key value:(NSString*)value table:(NSString*)tableName;
- (id)objectForInfoDictionaryKey:(NSString*)key;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (id)objectForKey:(NSString*)defaultName;
- (BOOL)boolForKey:(NSString*)defaultName;
- (void)setBool:(BOOL)value forKey:(NSString*)defaultName;
@end

typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h) {
    NSRect r;
    r.origin.x = x;
    r.origin.y = y;
    r.size.width = w;
    r.size.height = h;
    return r;
}
static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) {
    NSPoint p;
    p.x = x;
    p.y = y;
    return p;
}
extern const NSRect NSZeroRect;

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

// --- AppKit: application, events, screens -------------------------------------

typedef NSInteger NSApplicationActivationPolicy;
enum { NSApplicationActivationPolicyRegular = 0, NSApplicationActivationPolicyAccessory = 1 };

@protocol NSApplicationDelegate <NSObject>
@end

@interface NSResponder : NSObject
@end

@interface NSApplication : NSResponder
+ (NSApplication*)sharedApplication;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
@property(weak) id<NSApplicationDelegate> delegate;
- (void)run;
- (void)terminate:(id)sender;
- (void)activateIgnoringOtherApps:(BOOL)flag;
@end

extern NSApplication* NSApp;

typedef NSUInteger NSEventModifierFlags;
enum { NSEventModifierFlagOption = 1 << 19 };

@interface NSEvent : NSObject
@property(class, readonly) NSEventModifierFlags modifierFlags;
@end

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(class, readonly, strong) NSScreen* mainScreen;
@property(readonly) NSRect visibleFrame;
@property(readonly, copy) NSDictionary<NSDeviceDescriptionKey, id>* deviceDescription;
@end

// --- AppKit: colours, fonts, images ---------------------------------------------

@interface NSColor : NSObject
@property(class, strong, readonly) NSColor* whiteColor;
@property(class, strong, readonly) NSColor* labelColor;
@property(class, strong, readonly) NSColor* secondaryLabelColor;
@property(class, strong, readonly) NSColor* systemBlueColor;
@property(class, strong, readonly) NSColor* systemIndigoColor;
@property(class, strong, readonly) NSColor* controlAccentColor;
@property(readonly) CGColorRef CGColor;
@end

typedef CGFloat NSFontWeight;
extern const NSFontWeight NSFontWeightRegular;
extern const NSFontWeight NSFontWeightMedium;
extern const NSFontWeight NSFontWeightSemibold;

@interface NSFont : NSObject
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize;
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)fontSize;
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
@property(class, readonly) CGFloat systemFontSize;
@property(class, readonly) CGFloat smallSystemFontSize;
@end

@interface NSImageSymbolConfiguration : NSObject
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
@end

@interface NSImage : NSObject
+ (instancetype)imageWithSystemSymbolName:(NSString*)symbolName accessibilityDescription:(NSString*)description;
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration;
@end

// --- AppKit: views and layout -------------------------------------------------

@class CALayer;
@class NSLayoutXAxisAnchor;
@class NSLayoutYAxisAnchor;
@class NSLayoutDimension;

typedef float NSLayoutPriority;
typedef NSInteger NSLayoutConstraintOrientation;
enum { NSLayoutConstraintOrientationHorizontal = 0, NSLayoutConstraintOrientationVertical = 1 };
typedef NSInteger NSLayoutAttribute;
enum {
    NSLayoutAttributeLeading = 5,
    NSLayoutAttributeTrailing = 6,
    NSLayoutAttributeTop = 3,
    NSLayoutAttributeCenterY = 10,
};

@interface NSLayoutConstraint : NSObject
+ (void)activateConstraints:(NSArray<NSLayoutConstraint*>*)constraints;
@property(getter=isActive) BOOL active;
@end

@interface NSLayoutAnchor<AnchorType> : NSObject
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor;
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor constant:(CGFloat)c;
@end

@interface NSLayoutXAxisAnchor : NSLayoutAnchor<NSLayoutXAxisAnchor*>
@end

@interface NSLayoutYAxisAnchor : NSLayoutAnchor<NSLayoutYAxisAnchor*>
@end

@interface NSLayoutDimension : NSLayoutAnchor<NSLayoutDimension*>
- (NSLayoutConstraint*)constraintEqualToConstant:(CGFloat)c;
- (NSLayoutConstraint*)constraintGreaterThanOrEqualToConstant:(CGFloat)c;
@end

struct NSEdgeInsets {
    CGFloat top;
    CGFloat left;
    CGFloat bottom;
    CGFloat right;
};
typedef struct NSEdgeInsets NSEdgeInsets;
static inline NSEdgeInsets NSEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom, CGFloat right) {
    NSEdgeInsets e;
    e.top = top;
    e.left = left;
    e.bottom = bottom;
    e.right = right;
    return e;
}

@interface NSAppearance : NSObject
- (void)performAsCurrentDrawingAppearance:(void (^)(void))block;
@end

@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frameRect;
@property(readonly, strong) NSAppearance* effectiveAppearance;
@property BOOL wantsLayer;
@property(strong) CALayer* layer;
@property(readonly) NSRect bounds;
@property(readonly) NSSize fittingSize;
@property BOOL translatesAutoresizingMaskIntoConstraints;
@property(getter=isHidden) BOOL hidden;
- (void)addSubview:(NSView*)view;
- (void)layout;
- (void)viewDidChangeEffectiveAppearance;
- (void)setContentHuggingPriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation;
@property(readonly, strong) NSLayoutXAxisAnchor* leadingAnchor;
@property(readonly, strong) NSLayoutXAxisAnchor* trailingAnchor;
@property(readonly, strong) NSLayoutXAxisAnchor* centerXAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* topAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* bottomAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* centerYAnchor;
@property(readonly, strong) NSLayoutDimension* widthAnchor;
@property(readonly, strong) NSLayoutDimension* heightAnchor;
@end

typedef NSInteger NSUserInterfaceLayoutOrientation;
enum { NSUserInterfaceLayoutOrientationHorizontal = 0, NSUserInterfaceLayoutOrientationVertical = 1 };

@interface NSStackView : NSView
+ (instancetype)stackViewWithViews:(NSArray<NSView*>*)views;
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property CGFloat spacing;
@property NSEdgeInsets edgeInsets;
- (void)setCustomSpacing:(CGFloat)spacing afterView:(NSView*)view;
@end

typedef NSInteger NSVisualEffectMaterial;
enum { NSVisualEffectMaterialPopover = 6 };
typedef NSInteger NSVisualEffectBlendingMode;
enum { NSVisualEffectBlendingModeBehindWindow = 0, NSVisualEffectBlendingModeWithinWindow = 1 };
typedef NSInteger NSVisualEffectState;
enum { NSVisualEffectStateFollowsWindowActiveState = 0, NSVisualEffectStateActive = 1, NSVisualEffectStateInactive = 2 };

@interface NSVisualEffectView : NSView
@property NSVisualEffectMaterial material;
@property NSVisualEffectBlendingMode blendingMode;
@property NSVisualEffectState state;
@end

typedef NSUInteger NSControlSize;
enum { NSControlSizeRegular = 0, NSControlSizeSmall = 1, NSControlSizeMini = 2, NSControlSizeLarge = 3 };
typedef NSInteger NSControlStateValue;
enum { NSControlStateValueOff = 0, NSControlStateValueOn = 1 };

@interface NSControl : NSView
@property NSControlSize controlSize;
@property(copy) NSString* stringValue;
@property double doubleValue;
@property(strong) NSFont* font;
@end

@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString*)stringValue;
+ (instancetype)wrappingLabelWithString:(NSString*)stringValue;
@property(copy) NSColor* textColor;
@property CGFloat preferredMaxLayoutWidth;
@end

@interface NSButton : NSControl
+ (instancetype)buttonWithTitle:(NSString*)title target:(id)target action:(SEL)action;
+ (instancetype)radioButtonWithTitle:(NSString*)title target:(id)target action:(SEL)action;
@property(copy) NSString* title;
@property(copy) NSString* keyEquivalent;
@property NSControlStateValue state;
@property(copy) NSColor* bezelColor;
@end

@interface NSImageView : NSControl
+ (instancetype)imageViewWithImage:(NSImage*)image;
@property(copy) NSColor* contentTintColor;
@end

typedef NSUInteger NSProgressIndicatorStyle;
enum { NSProgressIndicatorStyleBar = 0, NSProgressIndicatorStyleSpinning = 1 };

@interface NSProgressIndicator : NSView
@property NSProgressIndicatorStyle style;
@property(getter=isIndeterminate) BOOL indeterminate;
@property NSControlSize controlSize;
@property double minValue;
@property double maxValue;
@property double doubleValue;
@end

// --- AppKit: windows and panels -----------------------------------------------

typedef NSUInteger NSWindowStyleMask;
enum {
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskFullSizeContentView = 1 << 15,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
};
typedef NSUInteger NSBackingStoreType;
enum { NSBackingStoreBuffered = 2 };
typedef NSInteger NSWindowLevel;
enum { NSFloatingWindowLevel = 3 };
typedef NSInteger NSWindowTitleVisibility;
enum { NSWindowTitleVisible = 0, NSWindowTitleHidden = 1 };
typedef NSUInteger NSWindowCollectionBehavior;
enum {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};
typedef NSUInteger NSWindowButton;
enum { NSWindowCloseButton = 0, NSWindowMiniaturizeButton = 1, NSWindowZoomButton = 2 };

@protocol NSWindowDelegate <NSObject>
@optional
- (void)windowWillClose:(NSNotification*)notification;
@end

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag;
@property(copy) NSString* title;
@property NSWindowTitleVisibility titleVisibility;
@property BOOL titlebarAppearsTransparent;
@property NSWindowLevel level;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property BOOL hidesOnDeactivate;
@property NSWindowCollectionBehavior collectionBehavior;
@property(strong) NSView* contentView;
@property(weak) id<NSWindowDelegate> delegate;
@property(readonly) NSRect frame;
@property CGFloat alphaValue;
- (instancetype)animator;
- (NSButton*)standardWindowButton:(NSWindowButton)b;
- (void)setContentSize:(NSSize)size;
- (void)setFrameOrigin:(NSPoint)point;
- (void)center;
- (void)orderFrontRegardless;
- (void)orderOut:(id)sender;
- (void)makeKeyWindow;
- (void)makeKeyAndOrderFront:(id)sender;
@end

@interface NSPanel : NSWindow
@property(getter=isFloatingPanel) BOOL floatingPanel;
@property BOOL worksWhenModal;
@end

@interface NSAnimationContext : NSObject
+ (void)runAnimationGroup:(void (^)(NSAnimationContext* context))changes
        completionHandler:(void (^)(void))completionHandler;
@property NSTimeInterval duration;
@end

// --- AppKit: status item and menus --------------------------------------------

@class NSMenu;

@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)string action:(SEL)selector keyEquivalent:(NSString*)charCode;
@property(weak) id target;
@property(getter=isEnabled) BOOL enabled;
@property NSControlStateValue state;
@end

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
@property BOOL autoenablesItems;
@property(weak) id<NSMenuDelegate> delegate;
- (void)addItem:(NSMenuItem*)newItem;
- (void)removeAllItems;
@end

@interface NSStatusBarButton : NSButton
@property(strong) NSImage* image;
@end

enum { NSSquareStatusItemLength = -2 };

@interface NSStatusItem : NSObject
@property(readonly, strong) NSStatusBarButton* button;
@property(strong) NSMenu* menu;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
@end

// --- AppKit: alerts ---------------------------------------------------------------

typedef NSInteger NSModalResponse;
enum { NSAlertFirstButtonReturn = 1000 };

@interface NSAlert : NSObject
@property(copy) NSString* messageText;
@property(copy) NSString* informativeText;
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (NSModalResponse)runModal;
@end
