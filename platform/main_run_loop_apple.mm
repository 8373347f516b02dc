// Runs closures and timers on the main thread of a Mac. Tests: tests/appkit/appkit_test.mm.

#import <Foundation/Foundation.h>

#include "platform/dispatch_queue.h"
#include "platform/main_run_loop.h"

NS_ASSUME_NONNULL_BEGIN

/// The target of a timer. The timer keeps its target alive.
@interface ORVTimerTarget : NSObject {
    std::function<void()> closure_;
}
- (instancetype)initWithClosure:(std::function<void()>)closure;
- (void)fire:(NSTimer*)timer;
@end

@implementation ORVTimerTarget

- (instancetype)initWithClosure:(std::function<void()>)closure {
    self = [super init];
    if (self) {
        closure_ = std::move(closure);
    }
    return self;
}

- (void)fire:(NSTimer*)timer {
    closure_();
}

@end

NS_ASSUME_NONNULL_END

namespace {

/// A timer on the main run loop, in the common modes: in the default mode alone it would not fire
/// while the menu is open.
class MainTimer final : public ORVRepeatingTimer {
public:
    MainTimer(std::chrono::milliseconds interval, std::function<void()> closure) {
        ORVTimerTarget* target = [[ORVTimerTarget alloc] initWithClosure:std::move(closure)];
        timer_ = [[NSTimer timerWithTimeInterval:std::chrono::duration<double>(interval).count()
                                          target:target
                                        selector:@selector(fire:)
                                        userInfo:nil
                                         repeats:YES] retain];
        [target release];
        [[NSRunLoop mainRunLoop] addTimer:timer_ forMode:NSRunLoopCommonModes];
    }
    ~MainTimer() override {
        [timer_ invalidate];
        [timer_ release];
    }
    MainTimer(const MainTimer&) = delete;
    MainTimer& operator=(const MainTimer&) = delete;

private:
    NSTimer* timer_;
};

}  // namespace

void ORVMainRunLoop::turn(const Closure& closure) {
    // The application drains its own pool only after an event, and none may come for hours.
    @autoreleasepool {
        closure();
        if (turnEnd_) {
            turnEnd_();
        }
    }
}

void ORVMainRunLoop::post(Closure closure) {
    platform::postToMainQueue([this, closure = std::move(closure)] { turn(closure); });
}

void ORVMainRunLoop::postAfter(std::chrono::milliseconds delay, Closure closure) {
    platform::postToMainQueueAfter(delay, [this, closure = std::move(closure)] { turn(closure); });
}

std::unique_ptr<ORVRepeatingTimer> ORVMainRunLoop::makeRepeatingTimer(
    std::chrono::milliseconds interval, Closure closure) {
    return std::make_unique<MainTimer>(interval,
                                       [this, closure = std::move(closure)] { turn(closure); });
}
