// libdispatch, as far as the macOS sources use it (Apple's Dispatch reference).
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct dispatch_queue_s* dispatch_queue_t;
typedef void (^dispatch_block_t)(void);

enum { QOS_CLASS_USER_INTERACTIVE = 0x21, QOS_CLASS_USER_INITIATED = 0x19, QOS_CLASS_DEFAULT = 0x15,
       QOS_CLASS_UTILITY = 0x11, QOS_CLASS_BACKGROUND = 0x09 };

dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);

#ifdef __cplusplus
}
#endif
