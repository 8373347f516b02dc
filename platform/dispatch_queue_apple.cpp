// Runs closures on queues of Grand Central Dispatch. Tests: tests/appkit/appkit_test.mm.
// Tests: tests/appkit/appkit_test.mm.

#include "platform/dispatch_queue.h"

#include <dispatch/dispatch.h>

#include <memory>

namespace platform {
namespace {

using Closure = std::function<void()>;

void* movedToHeap(Closure&& closure) {
    return std::make_unique<Closure>(std::move(closure)).release();
}

void run(void* context) {
    const std::unique_ptr<Closure> closure(static_cast<Closure*>(context));
    (*closure)();
}

}  // namespace

DispatchQueue::DispatchQueue(const std::string& label) {
    // Autoreleased objects are freed after each closure, and reading files has less priority than
    // what the user waits for.
    dispatch_queue_attr_t attributes = dispatch_queue_attr_make_with_autorelease_frequency(
        DISPATCH_QUEUE_SERIAL, DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM);
    attributes = dispatch_queue_attr_make_with_qos_class(attributes, QOS_CLASS_UTILITY, 0);
    queue_ = dispatch_queue_create(label.c_str(), attributes);
}

DispatchQueue::~DispatchQueue() {
    dispatch_release(queue_);
}

void DispatchQueue::dispatch(std::function<void()> closure) {
    dispatch_async_f(queue_, movedToHeap(std::move(closure)), run);
}

void postToMainQueue(std::function<void()> closure) {
    dispatch_async_f(dispatch_get_main_queue(), movedToHeap(std::move(closure)), run);
}

void postToMainQueueAfter(std::chrono::nanoseconds delay, std::function<void()> closure) {
    dispatch_after_f(dispatch_time(DISPATCH_TIME_NOW, delay.count()), dispatch_get_main_queue(),
                     movedToHeap(std::move(closure)), run);
}

}  // namespace platform
