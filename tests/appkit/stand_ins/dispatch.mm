// A thread for each private queue; the main queue is a list that the main run loop empties in its
// common modes, all of it in one go and without a pool of its own, as the real one may.

#import <Foundation/Foundation.h>

#include <dispatch/dispatch.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

struct dispatch_queue_attr_s {};

struct dispatch_queue_s {
    std::string label;
    bool hasPoolForEachItem = false;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::pair<dispatch_function_t, void*>> items;
};

namespace {

dispatch_queue_attr_s poolForEachItem;
thread_local dispatch_queue_t currentQueue = nullptr;

void runItems(dispatch_queue_t queue) {
    currentQueue = queue;
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    while (true) {
        std::unique_lock<std::mutex> lock(queue->mutex);
        queue->changed.wait(lock, [queue] { return !queue->items.empty(); });
        const auto [work, context] = queue->items.front();
        queue->items.pop_front();
        lock.unlock();
        work(context);
        if (queue->hasPoolForEachItem) {
            [pool release];
            pool = [NSAutoreleasePool new];
        }
    }
}

std::uint64_t nanosecondsNow() {
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                          std::chrono::steady_clock::now().time_since_epoch())
                                          .count());
}

}  // namespace

/// Runs on the main thread what was posted there.
@interface ORVStandInMainQueue : NSObject {
    dispatch_function_t work_;
    void* context_;
}
+ (void)runPosted;
- (instancetype)initWithWork:(dispatch_function_t)work context:(void*)context;
- (void)runLater:(NSTimer*)timer;
@end

@implementation ORVStandInMainQueue

+ (void)runPosted {
    dispatch_queue_t queue = dispatch_get_main_queue();
    std::unique_lock<std::mutex> lock(queue->mutex);
    while (!queue->items.empty()) {
        const auto [work, context] = queue->items.front();
        queue->items.pop_front();
        lock.unlock();
        work(context);
        lock.lock();
    }
}

- (instancetype)initWithWork:(dispatch_function_t)work context:(void*)context {
    self = [super init];
    work_ = work;
    context_ = context;
    return self;
}

- (void)runLater:(NSTimer*)timer {
    work_(context_);
}

@end

dispatch_queue_attr_t dispatch_queue_attr_make_with_autorelease_frequency(
    dispatch_queue_attr_t, dispatch_autorelease_frequency_t) {
    return &poolForEachItem;
}

dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t attributes,
                                                              dispatch_qos_class_t, int) {
    return attributes;
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
    auto* queue = new dispatch_queue_s;  // Never freed: its thread waits for more.
    queue->label = label;
    queue->hasPoolForEachItem = attributes == &poolForEachItem;
    std::thread([queue] { runItems(queue); }).detach();
    return queue;
}

const char* dispatch_queue_get_label(dispatch_queue_t queue) {
    return queue->label.c_str();
}

void dispatch_release(dispatch_queue_t) {}

dispatch_queue_t dispatch_get_main_queue() {
    static auto* queue = new dispatch_queue_s;
    return queue;
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
    {
        const std::lock_guard<std::mutex> lock(queue->mutex);
        queue->items.emplace_back(work, context);
    }
    queue->changed.notify_all();
    if (queue == dispatch_get_main_queue()) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        NSArray* modes =
            [NSArray arrayWithObjects:NSDefaultRunLoopMode, @"NSEventTrackingRunLoopMode", nil];
        [[ORVStandInMainQueue class] performSelectorOnMainThread:@selector(runPosted)
                                                      withObject:nil
                                                   waitUntilDone:NO
                                                           modes:modes];
        [pool release];
    }
}

dispatch_time_t dispatch_time(dispatch_time_t, std::int64_t nanoseconds) {
    return nanosecondsNow() + static_cast<std::uint64_t>(nanoseconds);
}

void dispatch_after_f(dispatch_time_t when, dispatch_queue_t, void* context,
                      dispatch_function_t work) {
    ORVStandInMainQueue* later = [[ORVStandInMainQueue alloc] initWithWork:work context:context];
    const double seconds = static_cast<double>(when - nanosecondsNow()) / 1e9;
    [[NSRunLoop mainRunLoop] addTimer:[NSTimer timerWithTimeInterval:seconds
                                                              target:later
                                                            selector:@selector(runLater:)
                                                            userInfo:nil
                                                             repeats:NO]
                              forMode:NSRunLoopCommonModes];
    [later release];
}

dispatch_queue_t dispatch_stand_in_current_queue() {
    return currentQueue;
}
