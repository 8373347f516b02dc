#pragma once

#include <cstdint>

// Stands in for libdispatch, as far as Brimlet uses it, in tests of the menu-bar shell on Linux.

struct dispatch_queue_s;
struct dispatch_queue_attr_s;
using dispatch_queue_t = dispatch_queue_s*;
using dispatch_queue_attr_t = dispatch_queue_attr_s*;
using dispatch_time_t = std::uint64_t;
using dispatch_function_t = void (*)(void*);
enum dispatch_autorelease_frequency_t { DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM = 1 };
enum dispatch_qos_class_t { QOS_CLASS_UTILITY = 0x11 };

constexpr dispatch_queue_attr_t DISPATCH_QUEUE_SERIAL = nullptr;
constexpr dispatch_time_t DISPATCH_TIME_NOW = 0;

dispatch_queue_attr_t dispatch_queue_attr_make_with_autorelease_frequency(
    dispatch_queue_attr_t attributes, dispatch_autorelease_frequency_t frequency);
dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t attributes,
                                                              dispatch_qos_class_t qosClass,
                                                              int relativePriority);
dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes);
const char* dispatch_queue_get_label(dispatch_queue_t queue);
void dispatch_release(dispatch_queue_t queue);
dispatch_queue_t dispatch_get_main_queue();
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds);
void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* context,
                      dispatch_function_t work);

/// For tests: the queue that runs the calling work, null outside of any.
dispatch_queue_t dispatch_stand_in_current_queue();
