// Runs closures and timers on the main thread of a Mac, and others on a queue of their own.
// Tests: tests/appkit/appkit_test.mm.

#import "platform/main_run_loop_apple.h"

#include <memory>

using Closure = std::function<void()>;

NS_ASSUME_NONNULL_BEGIN

/// The target of a timer. The timer keeps its target alive.
@interface ORVTimerTarget : NSObject {
@public
    Closure closure_;
}
- (void)fire:(NSTimer*)timer;
@end

@implementation ORVTimerTarget
- (void)fire:(NSTimer*)timer {
    closure_();
}
@end

NS_ASSUME_NONNULL_END

namespace {

/// Grand Central Dispatch takes a function and a pointer; blocks are not used, since a Linux test
/// lacks them.
void* movedToHeap(Closure&& closure) {
    return std::make_unique<Closure>(std::move(closure)).release();
}

void run(void* context) {
    const std::unique_ptr<Closure> closure(static_cast<Closure*>(context));
    (*closure)();
}

}  // namespace

ORVMainRunLoop::ORVMainRunLoop() : timers_([[NSMutableArray alloc] init]) {}

ORVMainRunLoop::~ORVMainRunLoop() {
    for (NSTimer* timer in timers_) {
        [timer invalidate];
    }
    [timers_ release];
}

ORVRunLoop::Closure ORVMainRunLoop::turnOf(Closure closure) {
    return [this, closure = std::move(closure)] {
        // The application drains its own pool only after an event, and none may come for hours.
        @autoreleasepool {
            closure();
            if (turnEnd_) {
                turnEnd_();
            }
        }
    };
}

void ORVMainRunLoop::post(Closure closure) {
    dispatch_async_f(dispatch_get_main_queue(), movedToHeap(turnOf(std::move(closure))), run);
}

void ORVMainRunLoop::postAfter(std::chrono::milliseconds delay, Closure closure) {
    const std::chrono::nanoseconds nanoseconds = delay;
    dispatch_after_f(dispatch_time(DISPATCH_TIME_NOW, nanoseconds.count()),
                     dispatch_get_main_queue(), movedToHeap(turnOf(std::move(closure))), run);
}

void ORVMainRunLoop::repeat(std::chrono::milliseconds interval, Closure closure) {
    const NSTimeInterval seconds = std::chrono::duration<double>(interval).count();
    ORVTimerTarget* target = [[[ORVTimerTarget alloc] init] autorelease];
    target->closure_ = turnOf(std::move(closure));
    NSTimer* timer = [NSTimer timerWithTimeInterval:seconds
                                             target:target
                                           selector:@selector(fire:)
                                           userInfo:nil
                                            repeats:YES];
    timer.tolerance = seconds / 10;  // The system wakes the processor for several timers at once.
    [timers_ addObject:timer];
    // In the default mode alone it would not fire while the menu is open.
    [[NSRunLoop mainRunLoop] addTimer:timer forMode:NSRunLoopCommonModes];
}

namespace platform {

DispatchQueue::DispatchQueue(const std::string& label) {
    // Autoreleased objects are freed after each closure, and reading files has less priority than
    // what the user waits for.
    dispatch_queue_attr_t attributes = dispatch_queue_attr_make_with_autorelease_frequency(
        DISPATCH_QUEUE_SERIAL, DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM);
    attributes = dispatch_queue_attr_make_with_qos_class(attributes, QOS_CLASS_UTILITY, 0);
    queue_ = dispatch_queue_create(label.c_str(), attributes);
}

void DispatchQueue::dispatch(std::function<void()> closure) {
    dispatch_async_f(queue_, movedToHeap(std::move(closure)), run);
}

}  // namespace platform
