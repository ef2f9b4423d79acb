// libdispatch, as far as the macOS sources use it (Apple's Dispatch reference
// and <os/object.h>). In Objective-C with ARC, dispatch objects are
// Objective-C objects (OS_OBJECT_USE_OBJC): ARC retains and releases them,
// dispatch_retain and dispatch_release are unavailable, and turning one into a
// C pointer takes a bridged cast. In plain C++ they are opaque pointers.
#pragma once

#include <os/availability.h>
#include <stdint.h>

#if defined(__OBJC__)
#include <objc/NSObject.h>
#define OS_OBJECT_USE_OBJC 1
#define OS_OBJECT_DECL_PROTOCOL(name, ...) @protocol OS_##name __VA_ARGS__ @end
#define OS_OBJECT_DECL_CLASS(name) OS_OBJECT_DECL_PROTOCOL(name, <NSObject>) typedef NSObject<OS_##name>* name##_t
#define OS_OBJECT_DECL_SUBCLASS(name, super)                                                                \
    OS_OBJECT_DECL_PROTOCOL(name, <OS_##super>) typedef NSObject<OS_##name>* name##_t
#define DISPATCH_DECL(name) OS_OBJECT_DECL_SUBCLASS(name, dispatch_object)
OS_OBJECT_DECL_CLASS(dispatch_object);
#else
#define OS_OBJECT_USE_OBJC 0
#define DISPATCH_DECL(name) typedef struct name##_s* name##_t
typedef struct dispatch_object_s* dispatch_object_t;
#endif

DISPATCH_DECL(dispatch_queue);

#ifdef __cplusplus
extern "C" {
#endif

typedef void (^dispatch_block_t)(void);

typedef enum qos_class_t : unsigned int {
    QOS_CLASS_USER_INTERACTIVE = 0x21,
    QOS_CLASS_USER_INITIATED = 0x19,
    QOS_CLASS_DEFAULT = 0x15,
    QOS_CLASS_UTILITY = 0x11,
    QOS_CLASS_BACKGROUND = 0x09,
    QOS_CLASS_UNSPECIFIED = 0x00,
} qos_class_t;

dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);

#if OS_OBJECT_USE_OBJC && __has_feature(objc_arc)
void dispatch_retain(dispatch_object_t object)
    __attribute__((unavailable("not available in automatic reference counting mode")));
void dispatch_release(dispatch_object_t object)
    __attribute__((unavailable("not available in automatic reference counting mode")));
#else
void dispatch_retain(dispatch_object_t object);
void dispatch_release(dispatch_object_t object);
#endif

#ifdef __cplusplus
}
#endif
