// Core Animation layers, as far as the macOS sources use them (Apple's
// CALayer and CAGradientLayer references).
#pragma once

#import <AppKit/AppKit.h>

typedef NSString* CALayerCornerCurve;
extern CALayerCornerCurve const kCACornerCurveContinuous API_AVAILABLE(macos(10.15));

@interface CALayer : NSObject
+ (instancetype)layer;
@property CGRect frame;
@property CGFloat cornerRadius;
@property(copy) CALayerCornerCurve cornerCurve API_AVAILABLE(macos(10.15));
- (void)addSublayer:(CALayer*)layer;
@end

@interface CAGradientLayer : CALayer
@property(copy) NSArray* colors;
@property CGPoint startPoint;
@property CGPoint endPoint;
@end
