#pragma once

#include <chrono>
#include <memory>

#include "platform/run_loop.h"

namespace platform {

/// A serial queue with a thread of its own, which sleeps while there is nothing to do.
class ThreadQueue final : public ORVSerialQueue {
public:
    ThreadQueue();

    /// False where the system gave no thread. Nothing that is dispatched then runs.
    bool hasThread() const { return hasThread_; }

    /// Closures that have not begun are dropped. The thread is left behind where it hangs in one,
    /// and touches nothing of the queue again.
    ~ThreadQueue() override;

    void dispatch(std::function<void()> closure) override;

    /// Waits until nothing runs; false when something still does after that time.
    bool waitUntilIdle(std::chrono::milliseconds time);

private:
    struct State;
    bool hasThread_ = true;
    std::shared_ptr<State> state_;  ///< Shared with the thread, which may outlive the queue.
};

}  // namespace platform
