#import <Foundation/Foundation.h>

#include <dispatch/dispatch.h>

#include <deque>

namespace {

struct Work {
    dispatch_queue_t queue;
    dispatch_function_t function;
    void* context;
    dispatch_time_t delay;
};

std::deque<Work> posted;
std::deque<Work> delayed;
dispatch_queue_t current = dispatch_get_main_queue();

/// Runs a closure. The main queue gets no autorelease pool: the real one may be drained only when
/// an event comes.
void runFirst(std::deque<Work>& works) {
    const Work work = works.front();
    works.pop_front();
    current = work.queue;
    NSAutoreleasePool* pool =
        current->attributes.hasPoolForEachItem ? [NSAutoreleasePool new] : nil;
    work.function(work.context);
    [pool release];
    current = dispatch_get_main_queue();
}

}  // namespace

@implementation NSRunLoop (StandInQueues)
- (void)finishStandIns {
    dispatch_stand_in_finish();
}
@end

dispatch_queue_t dispatch_get_main_queue() {
    static dispatch_queue_s queue{"main", {}};
    return &queue;
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
    posted.push_back({queue, work, context, 0});
    NSRunLoop* loop = [NSRunLoop mainRunLoop];
    [loop performSelector:@selector(finishStandIns)
                   target:loop
                 argument:nil
                    order:0
                    modes:@[ NSDefaultRunLoopMode, NSRunLoopCommonModes ]];
}

void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* context,
                      dispatch_function_t work) {
    delayed.push_back({queue, work, context, when});
}

dispatch_queue_t dispatch_stand_in_current_queue() {
    return current;
}

void dispatch_stand_in_finish() {
    while (!posted.empty()) {
        runFirst(posted);
    }
}

dispatch_time_t dispatch_stand_in_run_delayed() {
    const dispatch_time_t delay = delayed.empty() ? 0 : delayed.front().delay;
    if (!delayed.empty()) {
        runFirst(delayed);
    }
    return delay;
}
