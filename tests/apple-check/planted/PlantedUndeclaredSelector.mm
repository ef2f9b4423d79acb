// A deliberate mistake: a button's action names a selector that no class
// declares (a typo of `fire:`), so the click would raise "unrecognized
// selector" at run time. The syntax check must reject it.

#import <AppKit/AppKit.h>

@interface PlantedTarget : NSObject
- (void)fire:(id)sender;
@end

NSButton* plantedButton(PlantedTarget* target) {
    return [NSButton buttonWithTitle:@"Keep" target:target action:@selector(fier:)];
}
