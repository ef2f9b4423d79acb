// A deliberate mistake: a dispatch queue released by hand. Under ARC dispatch
// objects are Objective-C objects that ARC releases; releasing one by hand as
// C code does is an error.

#include <dispatch/dispatch.h>

void plantedDispatchRelease() {
    dispatch_queue_t queue = dispatch_get_global_queue(QOS_CLASS_UTILITY, 0);
    dispatch_async(queue, ^{
    });
    dispatch_release(queue);
}
