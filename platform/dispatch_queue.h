#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/run_loop.h"

struct dispatch_queue_s;

/// Queues of Grand Central Dispatch, which starts and ends their threads.
namespace platform {

/// A private serial queue.
class DispatchQueue final : public ORVSerialQueue {
public:
    /// The label is the queue's name in debuggers and in reports of the system.
    explicit DispatchQueue(const std::string& label);

    /// Closures that were dispatched still run.
    ~DispatchQueue() override;
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    void dispatch(std::function<void()> closure) override;

private:
    dispatch_queue_s* queue_;
};

/// Run the closure on the main thread, even while a menu is open. They can be called on any thread.
void postToMainQueue(std::function<void()> closure);
void postToMainQueueAfter(std::chrono::nanoseconds delay, std::function<void()> closure);

}  // namespace platform
