// Closures on libdispatch's queues, each in a pool of its own for objects of the system.
// Tests: tests/appkit/appkit_test.mm.

#include "platform/dispatch_queue.h"

#include <dispatch/dispatch.h>

#include <memory>

namespace platform {
namespace {

using Closure = std::function<void()>;

void* keptUntilItRan(Closure&& closure) {
    return std::make_unique<Closure>(std::move(closure)).release();
}

void run(void* context) {
    const std::unique_ptr<Closure> closure(static_cast<Closure*>(context));
    (*closure)();
}

}  // namespace

DispatchQueue::DispatchQueue(const std::string& label) {
    // Objects of the system's libraries end with the closure that made them, and reading files
    // gives way to whatever the user is waiting for.
    dispatch_queue_attr_t attributes = dispatch_queue_attr_make_with_autorelease_frequency(
        DISPATCH_QUEUE_SERIAL, DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM);
    attributes = dispatch_queue_attr_make_with_qos_class(attributes, QOS_CLASS_UTILITY, 0);
    queue_ = dispatch_queue_create(label.c_str(), attributes);
}

DispatchQueue::~DispatchQueue() {
    dispatch_release(queue_);
}

void DispatchQueue::dispatch(std::function<void()> closure) {
    dispatch_async_f(queue_, keptUntilItRan(std::move(closure)), run);
}

void postToMainQueue(std::function<void()> closure) {
    dispatch_async_f(dispatch_get_main_queue(), keptUntilItRan(std::move(closure)), run);
}

void postToMainQueueAfter(std::chrono::nanoseconds delay, std::function<void()> closure) {
    dispatch_after_f(dispatch_time(DISPATCH_TIME_NOW, delay.count()), dispatch_get_main_queue(),
                     keptUntilItRan(std::move(closure)), run);
}

}  // namespace platform
