// A deliberate mistake in view code: a shell Text handed to AppKit where a
// string belongs. The syntax check must reject it (CTest expects it to fail).

#include "../../../HalvoraPro/macos/MacShellView.hpp"

#import <AppKit/AppKit.h>

void plantedViewError(const HalvoraPro::Alert& alert) {
    NSAlert* modal = [[NSAlert alloc] init];
    modal.messageText = alert.title; // must go through the localizer first
}
