// Figures without words. Tests: tests/app/app_delegate_test.cpp, tests/app/template_test.cpp.

#include "app/figures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "text/timestamps.h"

namespace app {
namespace {

std::string printed(const char* format, double value) {
    std::array<char, 400> text{};  // As long as the largest double.
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::int64_t secondsOf(ORVClock::TimePoint time) {
    return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
}

}  // namespace

Fullness fullnessOf(std::optional<double> percentage) {
    if (!percentage) {
        return Fullness::unknown;
    }
    return *percentage < 50   ? Fullness::low
           : *percentage < 80 ? Fullness::medium
           : *percentage < 95 ? Fullness::high
                              : Fullness::full;
}

const ORVContextUsage* shownUsage(const ORVSessionSnapshot& snapshot) {
    const bool isAvailable = snapshot.contextStatus() == ORVContextStatusAvailable;
    return isAvailable && snapshot.contextUsage() ? &*snapshot.contextUsage() : nullptr;
}

StatusTitle statusTitle(const ORVSessionSnapshot& snapshot) {
    const bool isCounted = snapshot.compactionStatus() == ORVCompactionStatusValid;
    const ORVContextUsage* usage = shownUsage(snapshot);
    return {"C" + (isCounted ? std::to_string(snapshot.compactionCount()) : "–"),
            (usage ? wholePercent(usage->percentage()) : "--") + '%'};
}

std::string wholePercent(double percentage) {
    return printed("%.0f", percentage);
}

std::string bar(double percentage) {
    const auto filled = std::lround(std::clamp(percentage, 0.0, 100.0) / (100.0 / kBarCells));
    std::string cells;
    for (int cell = 0; cell < kBarCells; ++cell) {
        cells += cell < filled ? "█" : "░";
    }
    return cells;
}

std::string tokenCount(std::int64_t count) {
    if (count < 1000) {
        return std::to_string(count);
    }
    const double thousands = static_cast<double>(count) / 1000.0;
    const bool isWhole = std::fabs(thousands - std::round(thousands)) < 0.05;
    return printed(isWhole ? "%.0fk" : "%.1fk", thousands);
}

std::chrono::seconds age(ORVFileDate date, ORVClock::TimePoint now) {
    constexpr std::int64_t kLongAgo = std::int64_t{1} << 60U;
    return std::chrono::seconds(
        std::max<std::int64_t>(0, secondsOf(now) - std::max(date.seconds, -kLongAgo)));
}

std::string ageText(std::chrono::seconds age) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    constexpr std::int64_t kDay = 24 * kHour;
    const std::int64_t seconds = age.count();
    if (seconds < kMinute) {
        return std::to_string(seconds) + "s";
    }
    if (seconds < kHour) {
        return std::to_string(seconds / kMinute) + "m";
    }
    return seconds < kDay ? std::to_string(seconds / kHour) + "h"
                          : std::to_string(seconds / kDay) + "d";
}

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
