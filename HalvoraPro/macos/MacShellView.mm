// The shell's AppKit view: status item and menu, floating panels with their
// chrome, the identification window and modal alerts. It draws what the
// portable shell hands it and forwards every click; where a window goes
// comes from PanelPlacement, and whether it activates the application, takes
// the keyboard or moves comes from Focus, as a Presentation. Every entry from
// AppKit runs through HalvoraPlatform::EntryBarrier, and nothing is released
// inside one of its own calls. Sources: Apple's NSStatusBar, NSMenu, NSPanel
// (NSWindowStyleMaskNonactivatingPanel, worksWhenModal), NSWindow
// (makeKeyWindow, orderFrontRegardless, center), NSApplication
// (activateIgnoringOtherApps:), NSButton (keyEquivalent), NSStackView,
// NSProgressIndicator, NSVisualEffectView, NSAlert, NSAppearance
// (performAsCurrentDrawingAppearance:), NSAnimationContext, CAGradientLayer
// and Dispatch documentation, and Apple's Auto Layout Guide;
// docs/macos-platform.md.

#include "MacShellView.hpp"

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>
#include <HalvoraPlatform/EntryBarrier.hpp>
#include <HalvoraPro/AlertQueue.hpp>
#include <HalvoraPro/Focus.hpp>
#include <HalvoraPro/PanelPlacement.hpp>
#include <dispatch/dispatch.h>
#include <map>
#include <vector>

using HalvoraPlatform::EntryBarrier;
using HalvoraPro::MenuBarController;

/// A target for buttons and menu items that runs a C++ closure.
@interface HalvoraAction : NSObject
- (instancetype)initWithHandler:(std::function<void()>)handler;
- (void)fire:(id)sender;
@end

@implementation HalvoraAction {
    std::function<void()> _handler;
}
- (instancetype)initWithHandler:(std::function<void()>)handler {
    self = [super init];
    if (self) _handler = std::move(handler);
    return self;
}
- (void)fire:(id)sender {
    (void)sender;
    // Runs a copy: ARC does not retain self during a method, and a handler that
    // runs a modal alert also runs the main queue, where a releaseLater may free
    // this action and its closure.
    const std::function<void()> handler = _handler;
    if (handler) EntryBarrier::guarded("a button or menu item", handler);
}
@end

/// The status menu's delegate: the menu is rebuilt each time it opens.
@interface HalvoraMenuDelegate : NSObject <NSMenuDelegate>
@property(nonatomic, copy) void (^needsUpdate)(NSMenu* menu);
@property(nonatomic, copy) void (^didClose)(void);
@end

@implementation HalvoraMenuDelegate
- (void)menuNeedsUpdate:(NSMenu*)menu {
    if (self.needsUpdate) EntryBarrier::guarded("opening the menu", [&] { self.needsUpdate(menu); });
}
- (void)menuDidClose:(NSMenu*)menu {
    (void)menu;
    if (self.didClose) EntryBarrier::guarded("closing the menu", [&] { self.didClose(); });
}
@end

/// Tells the shell when the user closes the identification window.
@interface HalvoraWindowDelegate : NSObject <NSWindowDelegate>
@property(nonatomic, copy) void (^willClose)(void);
@end

@implementation HalvoraWindowDelegate
- (void)windowWillClose:(NSNotification*)notification {
    (void)notification;
    if (self.willClose) EntryBarrier::guarded("closing the identification window", [&] { self.willClose(); });
}
@end

/// The panels' icon: an SF Symbol in white on a blue-to-indigo gradient.
@interface HalvoraPanelIcon : NSView
- (instancetype)initWithSymbol:(NSString*)symbol;
@end

@implementation HalvoraPanelIcon {
    CAGradientLayer* _gradient;
}
- (instancetype)initWithSymbol:(NSString*)symbol {
    self = [super initWithFrame:NSMakeRect(0, 0, 44, 44)];
    if (!self) return self;
    self.wantsLayer = YES;
    _gradient = [CAGradientLayer layer];
    _gradient.startPoint = CGPointMake(0.5, 1);
    _gradient.endPoint = CGPointMake(0.5, 0);
    _gradient.cornerRadius = 11;
    _gradient.cornerCurve = kCACornerCurveContinuous;
    [self.layer addSublayer:_gradient];
    [self updateColors];
    NSImageSymbolConfiguration* configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:22 weight:NSFontWeightMedium];
    NSImage* image = [[NSImage imageWithSystemSymbolName:symbol accessibilityDescription:nil]
        imageWithSymbolConfiguration:configuration];
    NSImageView* imageView = [NSImageView imageViewWithImage:image];
    imageView.contentTintColor = [NSColor whiteColor];
    imageView.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:imageView];
    [NSLayoutConstraint activateConstraints:@[
        [self.widthAnchor constraintEqualToConstant:44], [self.heightAnchor constraintEqualToConstant:44],
        [imageView.centerXAnchor constraintEqualToAnchor:self.centerXAnchor],
        [imageView.centerYAnchor constraintEqualToAnchor:self.centerYAnchor]
    ]];
    return self;
}
- (void)updateColors {
    // A dynamic colour's CGColor is the one of the current drawing appearance:
    // resolve it in this view's.
    [self.effectiveAppearance performAsCurrentDrawingAppearance:^{
      self->_gradient.colors =
          @[ (__bridge id)[NSColor systemBlueColor].CGColor, (__bridge id)[NSColor systemIndigoColor].CGColor ];
    }];
}
- (void)viewDidChangeEffectiveAppearance {
    [super viewDidChangeEffectiveAppearance];
    [self updateColors];
}
- (void)layout {
    [super layout];
    _gradient.frame = self.bounds;
}
@end

namespace {

NSString* ns(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

/// Keeps `objects` until the next turn of the main queue: AppKit may still be
/// inside one of their methods (a button's action, a window's delegate call),
/// and an object must not be deallocated while its method runs.
void releaseLater(NSArray* objects) {
    dispatch_async(dispatch_get_main_queue(), ^{
      (void)objects;
    });
}

/// Resizes the window to fit its content, its top edge where it was.
void fitKeepingTop(NSWindow* window) {
    const NSRect before = window.frame;
    [window setContentSize:window.contentView.fittingSize];
    const auto [x, y] = HalvoraPro::PanelPlacement::originKeepingTop(before.origin.x, before.origin.y,
                                                                     before.size.height, window.frame.size.height);
    [window setFrameOrigin:NSMakePoint(x, y)];
}

NSTextField* wrappingLabel(NSString* text, NSFont* font, NSColor* color) {
    NSTextField* label = [NSTextField wrappingLabelWithString:text];
    label.font = font;
    label.textColor = color;
    return label;
}

NSButton* button(NSString* title, NSString* key, HalvoraAction* action) {
    NSButton* b = [NSButton buttonWithTitle:title target:action action:@selector(fire:)];
    b.keyEquivalent = key;
    b.controlSize = NSControlSizeLarge;
    [b.widthAnchor constraintGreaterThanOrEqualToConstant:88].active = YES;
    return b;
}

/// The panels' background: the popover material behind the window, with the
/// content inset and the width fixed.
NSView* panelBackground(NSView* content, CGFloat width) {
    NSVisualEffectView* background = [[NSVisualEffectView alloc] initWithFrame:NSZeroRect];
    background.material = NSVisualEffectMaterialPopover;
    background.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    background.state = NSVisualEffectStateActive;
    content.translatesAutoresizingMaskIntoConstraints = NO;
    [background addSubview:content];
    [NSLayoutConstraint activateConstraints:@[
        [content.leadingAnchor constraintEqualToAnchor:background.leadingAnchor constant:20],
        [content.trailingAnchor constraintEqualToAnchor:background.trailingAnchor constant:-20],
        [content.topAnchor constraintEqualToAnchor:background.topAnchor constant:22],
        [content.bottomAnchor constraintEqualToAnchor:background.bottomAnchor constant:-18],
        [background.widthAnchor constraintEqualToConstant:width]
    ]];
    return background;
}

/// One floating panel and the controls its content goes into.
struct FloatingPanel {
    NSPanel* panel = nil;
    NSTextField* title = nil;
    NSTextField* message = nil;
    NSTextField* countdown = nil;
    NSProgressIndicator* progress = nil;
    NSButton* cancel = nil;
    NSButton* accept = nil;
    NSArray<HalvoraAction*>* actions = nil;
};

} // namespace

namespace HalvoraPro {

struct MacShellView::Views {
    std::function<std::string(const Text&)> localize;
    std::weak_ptr<MenuBarController> menu;
    NSStatusItem* statusItem = nil;
    NSMenu* statusMenu = nil;
    HalvoraMenuDelegate* menuDelegate = nil;
    NSMutableArray<HalvoraAction*>* menuActions = [NSMutableArray array];
    std::map<PanelKind, FloatingPanel> panels;
    NSWindow* identification = nil;
    HalvoraWindowDelegate* windowDelegate = nil;
    NSMutableArray<HalvoraAction*>* windowActions = [NSMutableArray array];
    std::unique_ptr<AlertQueue> alerts;

    NSString* say(const Text& text) const { return ns(localize(text)); }

    void renderMenu(NSMenu* into, const Menu& items) {
        [into removeAllItems];
        // The item being chosen may be what rebuilds the menu.
        releaseLater(menuActions);
        menuActions = [NSMutableArray array];
        for (const MenuItem& item : items) {
            if (item.kind == MenuItem::Kind::separator) {
                [into addItem:[NSMenuItem separatorItem]];
                continue;
            }
            HalvoraAction* action = [[HalvoraAction alloc] initWithHandler:item.handler];
            [menuActions addObject:action];
            NSMenuItem* row = [[NSMenuItem alloc] initWithTitle:say(item.title)
                                                         action:@selector(fire:)
                                                  keyEquivalent:ns(item.keyEquivalent)];
            row.target = action;
            row.enabled = item.enabled ? YES : NO;
            row.state = item.checked ? NSControlStateValueOn : NSControlStateValueOff;
            [into addItem:row];
        }
    }

    FloatingPanel& panel(PanelKind kind) {
        FloatingPanel& p = panels[kind];
        if (p.panel) return p;
        const bool isPrompt = kind == PanelKind::switchPrompt;
        p.panel = [[NSPanel alloc]
            initWithContentRect:NSMakeRect(0, 0, 400, isPrompt ? 120 : 140)
                      styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskFullSizeContentView |
                                NSWindowStyleMaskNonactivatingPanel
                        backing:NSBackingStoreBuffered
                          defer:NO];
        p.panel.titleVisibility = NSWindowTitleHidden;
        p.panel.titlebarAppearsTransparent = YES;
        p.panel.level = NSFloatingWindowLevel;
        p.panel.releasedWhenClosed = NO;
        p.panel.hidesOnDeactivate = NO;
        p.panel.worksWhenModal = Focus::worksWhenModal(kind) ? YES : NO;
        if (isPrompt) {
            p.panel.floatingPanel = YES;
            p.panel.collectionBehavior =
                NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
            for (const NSWindowButton b : {NSWindowCloseButton, NSWindowMiniaturizeButton, NSWindowZoomButton})
                [p.panel standardWindowButton:b].hidden = YES;
        }
        NSFont* body = [NSFont systemFontOfSize:[NSFont systemFontSize]];
        p.title = wrappingLabel(@"", [NSFont systemFontOfSize:[NSFont systemFontSize] + 2 weight:NSFontWeightSemibold],
                                [NSColor labelColor]);
        p.message = wrappingLabel(@"", body, [NSColor secondaryLabelColor]);
        p.message.preferredMaxLayoutWidth = 298;
        p.countdown = [NSTextField labelWithString:@""];
        p.countdown.font = [NSFont monospacedDigitSystemFontOfSize:[NSFont smallSystemFontSize]
                                                            weight:NSFontWeightRegular];
        p.countdown.textColor = [NSColor secondaryLabelColor];
        [p.countdown setContentHuggingPriority:1000 forOrientation:NSLayoutConstraintOrientationHorizontal];
        p.progress = [[NSProgressIndicator alloc] initWithFrame:NSZeroRect];
        p.progress.style = NSProgressIndicatorStyleBar;
        p.progress.indeterminate = NO;
        p.progress.controlSize = NSControlSizeSmall;
        p.progress.minValue = 0;
        p.progress.maxValue = 1;

        // What a button (or its key) does is the shell's to say.
        const std::weak_ptr<MenuBarController> weakMenu = menu;
        const auto pressing = [weakMenu, kind](PanelButton which) {
            return [[HalvoraAction alloc] initWithHandler:[weakMenu, kind, which] {
                if (const auto m = weakMenu.lock()) m->press(kind, which);
            }];
        };
        HalvoraAction* cancelAction = pressing(PanelButton::cancel);
        HalvoraAction* acceptAction = pressing(PanelButton::accept);
        p.actions = @[ cancelAction, acceptAction ];
        p.cancel = button(@"", ns(Focus::keyEquivalent(PanelButton::cancel)), cancelAction);
        p.accept = button(@"", ns(Focus::keyEquivalent(PanelButton::accept)), acceptAction);
        if (isPrompt) p.accept.bezelColor = [NSColor controlAccentColor];

        NSStackView* bar = [NSStackView stackViewWithViews:@[ p.progress, p.countdown ]];
        bar.spacing = 8;
        NSStackView* text = [NSStackView stackViewWithViews:isPrompt ? @[ p.title, p.message ]
                                                                     : @[ p.title, p.message, bar ]];
        text.orientation = NSUserInterfaceLayoutOrientationVertical;
        text.alignment = NSLayoutAttributeLeading;
        text.spacing = isPrompt ? 3 : 4;
        // The text column is as wide as the panel leaves it (400 less the
        // insets, the icon and the spacing); a bar-style progress indicator
        // has no width of its own, so the countdown row spans the column and
        // the bar takes what the countdown text leaves.
        [text.widthAnchor constraintEqualToConstant:400 - 2 * 20 - 44 - 14].active = YES;
        if (!isPrompt) {
            [text setCustomSpacing:10 afterView:p.message];
            [bar.widthAnchor constraintEqualToAnchor:text.widthAnchor].active = YES;
            [p.progress setContentHuggingPriority:1 forOrientation:NSLayoutConstraintOrientationHorizontal];
        }
        NSString* symbol = isPrompt ? @"rectangle.split.2x1.fill" : @"checkmark.rectangle.stack.fill";
        NSStackView* top = [NSStackView stackViewWithViews:@[ [[HalvoraPanelIcon alloc] initWithSymbol:symbol], text ]];
        top.alignment = isPrompt ? NSLayoutAttributeCenterY : NSLayoutAttributeTop;
        top.spacing = 14;
        NSStackView* buttons = [NSStackView stackViewWithViews:@[ p.cancel, p.accept ]];
        buttons.spacing = 10;
        NSStackView* whole = [NSStackView stackViewWithViews:@[ top, buttons ]];
        whole.orientation = NSUserInterfaceLayoutOrientationVertical;
        whole.alignment = NSLayoutAttributeTrailing;
        whole.spacing = 16;
        p.panel.contentView = panelBackground(whole, 400);
        return p;
    }

    /// Activates, centres, orders front and makes key, as `how` says.
    void present(NSWindow* window, const Presentation& how) {
        if (how.activatesApplication) [NSApp activateIgnoringOtherApps:YES];
        if (how.centres) place(window);
        if (how.ordersFront) [window orderFrontRegardless];
        if (how.becomesKey) [window makeKeyWindow];
    }

    void place(NSWindow* window) {
        std::vector<ScreenFrame> frames;
        std::optional<std::size_t> main;
        NSArray<NSScreen*>* screens = [NSScreen screens];
        for (NSUInteger i = 0; i < screens.count; ++i) {
            NSScreen* screen = screens[i];
            NSNumber* number = screen.deviceDescription[@"NSScreenNumber"];
            const NSRect f = screen.visibleFrame;
            frames.push_back({CGDisplayIsBuiltin(number.unsignedIntValue) != 0, f.origin.x, f.origin.y,
                              f.size.width, f.size.height});
            if (screen == [NSScreen mainScreen]) main = i;
        }
        const auto chosen = PanelPlacement::screenFor(frames, main);
        if (!chosen) return;
        const NSSize size = window.frame.size;
        const auto [x, y] = PanelPlacement::centredOrigin(size.width, size.height, frames[*chosen]);
        [window setFrameOrigin:NSMakePoint(x, y)];
    }
};

MacShellView::MacShellView(std::function<std::string(const Text&)> localize) : views_(std::make_unique<Views>()) {
    views_->localize = std::move(localize);
    views_->alerts = std::make_unique<AlertQueue>([this](const Alert& alert) -> std::size_t {
        NSAlert* modal = [[NSAlert alloc] init];
        modal.messageText = views_->say(alert.title);
        modal.informativeText = views_->say(alert.message);
        for (const Text& b : alert.buttons) [modal addButtonWithTitle:views_->say(b)];
        activateApplication();
        const NSModalResponse response = [modal runModal];
        return static_cast<std::size_t>(response - NSAlertFirstButtonReturn);
    });
}

MacShellView::~MacShellView() = default;

void MacShellView::attach(const std::shared_ptr<MenuBarController>& menu) {
    views_->menu = menu;
    views_->statusItem = [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength];
    views_->statusItem.button.image = [NSImage imageWithSystemSymbolName:@"rectangle.split.2x1"
                                                accessibilityDescription:@"Halvora Pro"];
    views_->statusMenu = [[NSMenu alloc] initWithTitle:@"Halvora Pro"];
    views_->statusMenu.autoenablesItems = NO;
    views_->menuDelegate = [[HalvoraMenuDelegate alloc] init];
    Views* views = views_.get();
    const std::weak_ptr<MenuBarController> weakMenu = menu;
    views_->menuDelegate.needsUpdate = ^(NSMenu* opening) {
      if (const auto m = weakMenu.lock()) views->renderMenu(opening, m->buildMenu());
    };
    views_->menuDelegate.didClose = ^{
      if (const auto m = weakMenu.lock()) m->menuDidClose();
    };
    views_->statusMenu.delegate = views_->menuDelegate;
    views_->statusItem.menu = views_->statusMenu;
}

void MacShellView::activateApplication() { [NSApp activateIgnoringOtherApps:YES]; }

void MacShellView::renderPanel(PanelKind kind, const PanelContent& content) {
    FloatingPanel& p = views_->panel(kind);
    p.title.stringValue = views_->say(content.title);
    p.message.stringValue = views_->say(content.message);
    p.countdown.stringValue = content.countdown ? views_->say(*content.countdown) : @"";
    p.progress.doubleValue = content.progress.value_or(0);
    p.cancel.title = views_->say(content.cancelButton);
    p.accept.title = views_->say(content.defaultButton);
    fitKeepingTop(p.panel);
}

void MacShellView::fadeInPanel(PanelKind kind, const Presentation& how) {
    NSPanel* panel = views_->panel(kind).panel;
    panel.alphaValue = 0;
    views_->present(panel, how);
    [NSAnimationContext
        runAnimationGroup:^(NSAnimationContext* context) {
          context.duration = 0.15;
          panel.animator.alphaValue = 1;
        }
        completionHandler:nil];
}

void MacShellView::fadeOutPanel(PanelKind kind, std::function<void()> completed) {
    NSPanel* panel = views_->panel(kind).panel;
    auto done = std::make_shared<std::function<void()>>(std::move(completed));
    [NSAnimationContext
        runAnimationGroup:^(NSAnimationContext* context) {
          context.duration = 0.15;
          panel.animator.alphaValue = 0;
        }
        completionHandler:^{
          if (*done) EntryBarrier::guarded("a panel's fade-out", *done);
        }];
}

void MacShellView::orderOutPanel(PanelKind kind) { [views_->panel(kind).panel orderOut:nil]; }

void MacShellView::showIdentification(const IdentificationContent& content, const Presentation& how) {
    Views& v = *views_;
    const std::weak_ptr<MenuBarController> weakMenu = v.menu;
    if (!v.identification) {
        v.identification = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 420, 200)
                                                       styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
        v.identification.releasedWhenClosed = NO;
        v.windowDelegate = [[HalvoraWindowDelegate alloc] init];
        v.windowDelegate.willClose = ^{
          const auto m = weakMenu.lock();
          if (const auto window = m ? m->identification() : nullptr) window->close();
        };
        v.identification.delegate = v.windowDelegate;
    }
    v.identification.title = v.say(content.windowTitle);
    // The radio or button being clicked may be what changes the content.
    releaseLater(v.windowActions);
    if (v.identification.contentView) releaseLater(@[ v.identification.contentView ]);
    v.windowActions = [NSMutableArray array];
    const auto forward = [&](std::function<void(IdentificationWindow&)> what) {
        HalvoraAction* action = [[HalvoraAction alloc] initWithHandler:[weakMenu, what] {
            const auto m = weakMenu.lock();
            if (const auto window = m ? m->identification() : nullptr) what(*window);
        }];
        [v.windowActions addObject:action];
        return action;
    };

    NSMutableArray<NSView*>* rows = [NSMutableArray array];
    [rows addObject:wrappingLabel(v.say(content.heading), [NSFont boldSystemFontOfSize:[NSFont systemFontSize]],
                                  [NSColor labelColor])];
    for (const Text& row : content.rows) {
        NSTextField* label =
            wrappingLabel(v.say(row), [NSFont systemFontOfSize:[NSFont systemFontSize]], [NSColor labelColor]);
        label.preferredMaxLayoutWidth = 380;
        [rows addObject:label];
    }
    for (std::size_t i = 0; i < content.radios.size(); ++i) {
        HalvoraAction* choose = forward([i](IdentificationWindow& window) { window.select(i); });
        NSButton* radio = [NSButton radioButtonWithTitle:v.say(content.radios[i].label)
                                                  target:choose
                                                  action:@selector(fire:)];
        radio.state = content.radios[i].on ? NSControlStateValueOn : NSControlStateValueOff;
        [rows addObject:radio];
    }
    NSMutableArray<NSView*>* buttons = [NSMutableArray array];
    const auto pressing = [&](IdentificationContent::Action a) {
        return forward([a](IdentificationWindow& window) { window.press(a); });
    };
    if (content.secondary) {
        NSButton* secondary = [NSButton buttonWithTitle:v.say(content.secondary->title)
                                                 target:pressing(content.secondary->action)
                                                 action:@selector(fire:)];
        secondary.keyEquivalent = ns(Focus::keyEquivalent(PanelButton::cancel));
        [buttons addObject:secondary];
    }
    NSButton* primary = [NSButton buttonWithTitle:v.say(content.primary.title)
                                           target:pressing(content.primary.action)
                                           action:@selector(fire:)];
    primary.keyEquivalent = ns(Focus::keyEquivalent(PanelButton::accept));
    [buttons addObject:primary];
    [rows addObject:[NSStackView stackViewWithViews:buttons]];

    NSStackView* stack = [NSStackView stackViewWithViews:rows];
    stack.orientation = NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = NSLayoutAttributeLeading;
    stack.spacing = 10;
    stack.edgeInsets = NSEdgeInsetsMake(16, 20, 16, 20);
    [stack.widthAnchor constraintEqualToConstant:400].active = YES;
    v.identification.contentView = stack;
    fitKeepingTop(v.identification);
    if (how.centres) [v.identification center];
    v.present(v.identification, Presentation{.activatesApplication = how.activatesApplication,
                                             .becomesKey = how.becomesKey,
                                             .centres = false,
                                             .ordersFront = how.ordersFront});
}

void MacShellView::closeIdentification() {
    // The shell has closed the window already; it only leaves the screen.
    // This may run inside the window's windowWillClose: or a button's action:
    // the window, its delegate and the actions go on the next turn.
    Views& v = *views_;
    [v.identification orderOut:nil];
    releaseLater(v.windowActions);
    if (v.identification && v.windowDelegate) releaseLater(@[ v.identification, v.windowDelegate ]);
    v.identification = nil;
    v.windowDelegate = nil;
    v.windowActions = [NSMutableArray array];
}

void MacShellView::updateOpenMenu(const Menu& menu) { views_->renderMenu(views_->statusMenu, menu); }

void MacShellView::runAlert(const Alert& alert, std::function<void(std::size_t button)> response) {
    views_->alerts->enqueue(alert, std::move(response));
}

void MacShellView::terminate() { [NSApp terminate:nil]; }

// For the self-test.
NSMenu* MacShellView::statusMenu() const {
    return views_->statusMenu;
}

NSWindow* MacShellView::panelWindow(PanelKind kind) const {
    const auto found = views_->panels.find(kind);
    return found == views_->panels.end() ? nil : found->second.panel;
}

NSWindow* MacShellView::identificationWindow() const {
    return views_->identification;
}

} // namespace HalvoraPro
