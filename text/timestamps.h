#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Times as records hold them and as people read them. All functions may be called on any thread.
namespace text {

/// Returns the time of a time stamp in ISO 8601: date, time to the second, and "Z" or an offset, as
/// in "2026-11-24T16:45:21.002Z" or "2026-11-25T00:45:21+08:00". A fraction of a second is dropped.
/// None for a day or a time that does not exist and for every other form.
std::optional<std::chrono::sys_seconds> timeOf(std::string_view timestamp);

/// Returns the fraction of a second of a time stamp that timeOf understands.
std::int32_t nanosecondsOf(std::string_view timestamp);

/// Returns the time in the user's zone (TZ) by a pattern of `strftime`, in at most 63 bytes; ""
/// when there is no such year.
std::string localTime(std::chrono::sys_seconds time, const char* pattern);

}  // namespace text
