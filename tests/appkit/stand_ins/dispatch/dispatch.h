#pragma once

#include <cstdint>
#include <string>

// The functions of libdispatch that Brimlet uses, for tests of the menu-bar shell on Linux. All
// queues run on the main thread, when a test tells them to.

enum dispatch_autorelease_frequency_t { DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM };
enum qos_class_t { QOS_CLASS_DEFAULT, QOS_CLASS_UTILITY };

struct dispatch_queue_attr_t {
    bool hasPoolForEachItem = false;
    qos_class_t qosClass = QOS_CLASS_DEFAULT;
};
struct dispatch_queue_s {
    std::string label;
    dispatch_queue_attr_t attributes;
};
using dispatch_queue_t = dispatch_queue_s*;
using dispatch_time_t = std::uint64_t;
using dispatch_function_t = void (*)(void*);

constexpr dispatch_queue_attr_t DISPATCH_QUEUE_SERIAL{};
constexpr dispatch_time_t DISPATCH_TIME_NOW = 0;

inline dispatch_queue_attr_t dispatch_queue_attr_make_with_autorelease_frequency(
    dispatch_queue_attr_t attributes, dispatch_autorelease_frequency_t) {
    return {true, attributes.qosClass};
}

inline dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(
    dispatch_queue_attr_t attributes, qos_class_t qosClass, int) {
    return {attributes.hasPoolForEachItem, qosClass};
}

inline dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
    return new dispatch_queue_s{label, attributes};
}

/// Does nothing: closures that were dispatched still run, so the queue must stay.
inline void dispatch_release(dispatch_queue_t) {}

inline dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds) {
    return when + static_cast<dispatch_time_t>(nanoseconds);
}

dispatch_queue_t dispatch_get_main_queue();
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* context,
                      dispatch_function_t work);

/// For tests: returns the queue that runs the caller.
dispatch_queue_t dispatch_stand_in_current_queue();

/// For tests: runs every closure except those with a delay.
void dispatch_stand_in_finish();

/// For tests: runs the first closure with a delay and returns its delay in nanoseconds; 0 when
/// there is none.
dispatch_time_t dispatch_stand_in_run_delayed();
