// The root class and protocol (Apple's objc/NSObject.h), as far as the macOS
// sources use them.
#pragma once

#include <objc/objc.h>

@protocol NSObject
- (BOOL)isKindOfClass:(Class)aClass;
@end

@interface NSObject <NSObject>
+ (instancetype)alloc;
+ (instancetype)new;
+ (Class)class;
- (instancetype)init;
@end
