#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/run_loop.h"

struct dispatch_queue_s;

/// What a Mac brings along: queues whose threads come and go by themselves.
namespace platform {

/// A private serial queue.
class DispatchQueue final : public ORVSerialQueue {
public:
    /// The label is what debuggers and reports of the system call the queue.
    explicit DispatchQueue(const std::string& label);

    /// What was dispatched still runs.
    ~DispatchQueue() override;
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    void dispatch(std::function<void()> closure) override;

private:
    dispatch_queue_s* queue_;
};

/// Run on the main thread by its run loop in the common modes, so also while a menu is open. Any
/// thread.
void postToMainQueue(std::function<void()> closure);
void postToMainQueueAfter(std::chrono::nanoseconds delay, std::function<void()> closure);

}  // namespace platform
