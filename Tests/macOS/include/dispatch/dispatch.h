// Serial queues and the main queue.
#pragma once

#include <objc/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

@protocol OS_dispatch_queue <NSObject>
@end
@protocol OS_dispatch_queue_main <OS_dispatch_queue>
@end
@protocol OS_dispatch_queue_attr <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject<OS_dispatch_queue_main>* dispatch_queue_main_t;
typedef NSObject<OS_dispatch_queue_attr>* dispatch_queue_attr_t;

typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;
#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_QUEUE_SERIAL nullptr

extern "C" {
dispatch_queue_main_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_queue_create(const char* _Nullable label, dispatch_queue_attr_t _Nullable attr)
    __attribute__((ns_returns_retained));
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_sync(dispatch_queue_t queue, __attribute__((noescape)) dispatch_block_t block);
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
}

NS_ASSUME_NONNULL_END
