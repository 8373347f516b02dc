#pragma once

#include <chrono>
#include <memory>

#include "platform/run_loop.h"

namespace platform {

/// A serial queue with a thread of its own, which sleeps while there is nothing to do.
class ThreadQueue final : public ORVSerialQueue {
public:
    ThreadQueue();

    /// False when the system could not start a thread; dispatched closures are then never run.
    bool hasThread() const { return hasThread_; }

    /// Drops the closures that have not begun. A thread that hangs in a closure is left behind, and
    /// no longer touches the queue.
    ~ThreadQueue() override;

    void dispatch(std::function<void()> closure) override;

    /// Waits at most that long until no closure runs or waits, and returns whether that is so.
    bool waitUntilIdle(std::chrono::milliseconds time);

private:
    struct State;
    bool hasThread_ = true;
    std::shared_ptr<State> state_;  ///< Shared with the thread, which may outlive the queue.
};

}  // namespace platform
