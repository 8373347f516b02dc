// The age of a file, computed without overflow: an inode may hold any number of seconds.
// Tests: tests/app/template_test.cpp.

#include "app/age.h"

#include <algorithm>

namespace app {

std::chrono::seconds age(ORVFileDate date, ORVClock::TimePoint now) {
    const std::int64_t nowSeconds =
        std::chrono::floor<std::chrono::seconds>(now.time_since_epoch()).count();
    constexpr std::int64_t kLongAgo = std::int64_t{1} << 60U;
    return std::chrono::seconds(
        std::max<std::int64_t>(0, nowSeconds - std::max(date.seconds, -kLongAgo)));
}

std::string ageText(ORVFileDate date, ORVClock::TimePoint now) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    constexpr std::int64_t kDay = 24 * kHour;
    const std::int64_t seconds = age(date, now).count();
    if (seconds < kMinute) {
        return std::to_string(seconds) + "s";
    }
    if (seconds < kHour) {
        return std::to_string(seconds / kMinute) + "m";
    }
    return seconds < kDay ? std::to_string(seconds / kHour) + "h"
                          : std::to_string(seconds / kDay) + "d";
}

}  // namespace app
