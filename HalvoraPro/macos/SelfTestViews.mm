// The self-test's AppKit half (SelfTestViews.hpp). Sources: Apple's
// NSApplication (sendAction:to:from:), NSMenu, NSMenuItem (action, target),
// NSButton (performClick:, keyEquivalent), NSWindow (performClose:,
// isVisible), NSAlert (layout, window), NSView
// (bitmapImageRepForCachingDisplayInRect:, cacheDisplayInRect:toBitmapImageRep:),
// NSBitmapImageRep (representationUsingType:properties:) and NSRunLoop
// documentation; docs/macos-platform.md.

#include "SelfTestViews.hpp"

#import <AppKit/AppKit.h>
#include <CommandWords.hpp>
#include <deque>

namespace HalvoraPro {

namespace {

NSString* ns(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

/// The buttons in a view and its subviews, in the order they are laid out.
void collectButtons(NSView* view, NSMutableArray<NSButton*>* into) {
    for (NSView* child in view.subviews) {
        if ([child isKindOfClass:[NSButton class]]) [into addObject:static_cast<NSButton*>(child)];
        collectButtons(child, into);
    }
}

NSMutableArray<NSButton*>* buttonsOf(NSWindow* window) {
    NSMutableArray<NSButton*>* buttons = [NSMutableArray array];
    if (window) collectButtons(window.contentView, buttons);
    return buttons;
}

/// The button that Return (the default one) or Escape (the cancel one) presses.
NSButton* dialogButton(NSWindow* window, Halvora::DialogButton which) {
    NSString* key = which == Halvora::DialogButton::defaultButton ? @"\r" : @"\033";
    for (NSButton* b in buttonsOf(window))
        if ([b.keyEquivalent isEqualToString:key]) return b;
    return nil;
}

void press(NSButton* button, const std::string& what) {
    if (!button || !button.enabled) throw Halvora::CommandError(what + " is not on the screen to press");
    [button performClick:nil];
}

} // namespace

struct SelfTestView::Alerts {
    std::deque<NSAlert*> drawn;
};

SelfTestView::SelfTestView(std::shared_ptr<MacShellView> views, std::function<std::string(const Text&)> localize)
    : views_(std::move(views)), localize_(std::move(localize)), alerts_(std::make_unique<Alerts>()) {}

SelfTestView::~SelfTestView() = default;

void SelfTestView::runAlert(const Alert& alert, std::function<void(std::size_t)>) {
    NSAlert* drawn = [[NSAlert alloc] init];
    drawn.messageText = ns(localize_(alert.title));
    drawn.informativeText = ns(localize_(alert.message));
    for (const Text& b : alert.buttons) [drawn addButtonWithTitle:ns(localize_(b))];
    alerts_->drawn.push_back(drawn);
}

void SelfTestView::clear() {
    views_->orderOutPanel(PanelKind::confirmation);
    views_->orderOutPanel(PanelKind::switchPrompt);
    views_->closeIdentification();
    alerts_->drawn.clear();
}

namespace {

bool writePNG(NSWindow* window, const std::string& png) {
    NSView* view = window.contentView.superview ? window.contentView.superview : window.contentView;
    if (!view) return false;
    [view layoutSubtreeIfNeeded];
    [view displayIfNeeded];
    NSBitmapImageRep* bitmap = [view bitmapImageRepForCachingDisplayInRect:view.bounds];
    if (!bitmap) return false;
    [view cacheDisplayInRect:view.bounds toBitmapImageRep:bitmap];
    NSData* data = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:[NSDictionary dictionary]];
    return data && [data writeToFile:ns(png) atomically:YES];
}

} // namespace

bool SelfTestView::captureNextAlert(const std::string& png) {
    if (alerts_->drawn.empty()) return false;
    NSAlert* alert = alerts_->drawn.front();
    alerts_->drawn.pop_front();
    [alert layout];
    return writePNG(alert.window, png);
}

void AppKitGestures::openMenu(const Menu& menu) {
    // The menu's items as they are drawn when it opens.
    views_->updateOpenMenu(menu);
    if (views_->statusMenu().itemArray.count != menu.size())
        throw Halvora::CommandError("the status menu shows " + std::to_string(views_->statusMenu().itemArray.count) +
                                    " items, not " + std::to_string(menu.size()));
}

void AppKitGestures::chooseMenuItem(std::size_t index, const MenuItem& item) {
    NSArray<NSMenuItem*>* rows = views_->statusMenu().itemArray;
    if (index >= rows.count) throw Halvora::CommandError("the status menu has no item " + std::to_string(index + 1));
    NSMenuItem* row = rows[index];
    const std::string title = localize_(item.title);
    if (![row.title isEqualToString:ns(title)] || !row.enabled)
        throw Halvora::CommandError("the status menu's item " + std::to_string(index + 1) + " is not \"" + title + "\"");
    [NSApp sendAction:row.action to:row.target from:row];
}

void AppKitGestures::pressPanelButton(PanelKind panel, Halvora::DialogButton button, MenuBarController&) {
    press(dialogButton(views_->panelWindow(panel), button),
          std::string(panel == PanelKind::confirmation ? "the confirmation panel's " : "the switch prompt's ") +
              (button == Halvora::DialogButton::defaultButton ? "default button" : "cancel button"));
}

void AppKitGestures::chooseRadio(std::size_t index, IdentificationWindow&) {
    // The radios are the window's buttons that no key presses.
    NSMutableArray<NSButton*>* radios = [NSMutableArray array];
    for (NSButton* b in buttonsOf(views_->identificationWindow()))
        if (b.keyEquivalent.length == 0) [radios addObject:b];
    press(index < radios.count ? radios[index] : nil, "radio " + std::to_string(index + 1));
}

void AppKitGestures::pressWindowButton(Halvora::DialogButton button, IdentificationContent::Action,
                                       IdentificationWindow&) {
    press(dialogButton(views_->identificationWindow(), button),
          button == Halvora::DialogButton::defaultButton ? "the window's default button"
                                                         : "the window's cancel button");
}

void AppKitGestures::closeWindow(IdentificationWindow&) {
    NSWindow* window = views_->identificationWindow();
    if (!window) throw Halvora::CommandError("the identification window is not on the screen");
    [window performClose:nil];
}

void AppKitScreen::settle() {
    // Layout, drawing and the panels' 0.15 s fades run on the main run loop.
    [[NSRunLoop currentRunLoop] runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.35]];
}

std::set<Halvora::ShownWindow> AppKitScreen::visibleWindows() const {
    std::set<Halvora::ShownWindow> visible;
    const auto shows = [](NSWindow* window) { return window && window.visible && window.alphaValue > 0.01; };
    if (shows(views_->panelWindow(PanelKind::confirmation))) visible.insert(Halvora::ShownWindow::confirmationPanel);
    if (shows(views_->panelWindow(PanelKind::switchPrompt))) visible.insert(Halvora::ShownWindow::switchPrompt);
    if (shows(views_->identificationWindow())) visible.insert(Halvora::ShownWindow::identificationWindow);
    return visible;
}

bool AppKitScreen::capture(Halvora::ShownWindow window, const std::filesystem::path& png) {
    switch (window) {
    case Halvora::ShownWindow::confirmationPanel:
        return writePNG(views_->panelWindow(PanelKind::confirmation), png.string());
    case Halvora::ShownWindow::switchPrompt:
        return writePNG(views_->panelWindow(PanelKind::switchPrompt), png.string());
    case Halvora::ShownWindow::identificationWindow:
        return writePNG(views_->identificationWindow(), png.string());
    case Halvora::ShownWindow::alert:
        break;
    }
    return shown_->captureNextAlert(png.string());
}

} // namespace HalvoraPro
