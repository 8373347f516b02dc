#pragma once

#import <Foundation/Foundation.h>
#include <dispatch/dispatch.h>

#include <string>

#include "platform/run_loop.h"

/// The main thread of a Mac's application: the main queue of Grand Central Dispatch, and timers on
/// the main run loop. Both go on while a menu is open. Closures that were posted must not outlive
/// the loop.
class ORVMainRunLoop final : public ORVRunLoop {
public:
    ORVMainRunLoop();
    ~ORVMainRunLoop() override;
    ORVMainRunLoop(const ORVMainRunLoop&) = delete;
    ORVMainRunLoop& operator=(const ORVMainRunLoop&) = delete;

    void post(Closure closure) override;
    void postAfter(std::chrono::milliseconds delay, Closure closure) override;
    void repeat(std::chrono::milliseconds interval, Closure closure) override;

    /// Sets the closure that is called at the end of every turn.
    void setTurnEnd(Closure turnEnd) { turnEnd_ = std::move(turnEnd); }

private:
    Closure turnOf(Closure closure);

    Closure turnEnd_;
    NSMutableArray* timers_;
};

namespace platform {

/// A private serial queue of Grand Central Dispatch, which starts and ends its thread.
class DispatchQueue final : public ORVSerialQueue {
public:
    /// The label is the queue's name in debuggers and in reports of the system.
    explicit DispatchQueue(const std::string& label);

    /// Closures that were dispatched still run.
    ~DispatchQueue() override { dispatch_release(queue_); }
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    void dispatch(std::function<void()> closure) override;

private:
    dispatch_queue_t queue_;
};

}  // namespace platform
