// Writes rate limits in words. Tests: tests/app/template_test.cpp.

#include "app/rate_limits.h"

#include <algorithm>

#include "app/figures.h"
#include "text/timestamps.h"

namespace app {
namespace {

std::int64_t secondsOf(ORVClock::TimePoint time) {
    return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
}

}  // namespace

std::string windowText(const ORVRateLimit& limit) {
    constexpr std::int64_t kHour = 60;
    constexpr std::int64_t kDay = 24 * kHour;
    if (!limit.minutes) {
        return "--";
    }
    const std::int64_t minutes = *limit.minutes;
    if (minutes > 0 && minutes % kDay == 0) {
        return std::to_string(minutes / kDay) + "d";
    }
    return minutes > 0 && minutes % kHour == 0 ? std::to_string(minutes / kHour) + "h"
                                               : std::to_string(minutes) + "m";
}

std::string resetText(const ORVRateLimit& limit, ORVClock::TimePoint now) {
    constexpr std::int64_t kDay = 24 * 60 * 60;
    constexpr std::int64_t kLatest = std::int64_t{1} << 60U;
    const std::int64_t wait =
        std::clamp<std::int64_t>(limit.resetsAt.value_or(0), 0, kLatest) - secondsOf(now);
    if (!limit.resetsAt || wait <= 0) {
        return "";
    }
    return text::localTime(std::chrono::sys_seconds(std::chrono::seconds(*limit.resetsAt)),
                           wait < kDay ? "%H:%M" : "%m-%d %H:%M");
}

std::optional<double> usedPercent(const ORVRateLimit& limit, ORVClock::TimePoint now) {
    const bool hasPassed = limit.resetsAt && *limit.resetsAt <= secondsOf(now);
    return hasPassed ? std::optional(0.0) : limit.usedPercent;
}

std::string rateLimitsText(const std::vector<ORVRateLimit>& limits, ORVClock::TimePoint now) {
    std::string text;
    for (const ORVRateLimit& limit : limits) {
        const auto used = usedPercent(limit, now);
        text += (text.empty() ? "" : " · ") + windowText(limit) + " " +
                (used ? wholePercent(*used) : "--") + "%";
    }
    return text;
}

}  // namespace app
