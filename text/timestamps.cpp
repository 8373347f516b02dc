// Reads time stamps by the calendar of the standard library, which knows no time zone and so asks
// for no file. Tests: tests/text/timestamps_test.cpp.

#include "text/timestamps.h"

#include <algorithm>
#include <array>
#include <ctime>

namespace text {
namespace {

constexpr std::string_view kDateAndTime = "0000-00-00T00:00:00";
constexpr std::string_view kOffset = "00:00";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether the text has a digit in the place of every "0" of the form, and is equal elsewhere.
bool hasForm(std::string_view text, std::string_view form) {
    return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                      [](char c, char inForm) { return inForm == '0' ? isDigit(c) : c == inForm; });
}

int number(std::string_view digits) {
    int value = 0;
    for (const char digit : digits) {
        value = value * 10 + (digit - '0');
    }
    return value;
}

/// Returns the length of a fraction with its point; 0 where the text begins with none.
std::size_t fractionLength(std::string_view text) {
    if (text.size() < 2 || text[0] != '.' || !isDigit(text[1])) {
        return 0;
    }
    return std::min(text.size(), text.find_first_not_of("0123456789", 1));
}

/// Returns how far the zone is ahead of UTC.
std::optional<std::chrono::minutes> offsetOf(std::string_view zone) {
    if (zone == "Z") {
        return std::chrono::minutes(0);
    }
    if (zone.empty() || (zone[0] != '+' && zone[0] != '-') || !hasForm(zone.substr(1), kOffset)) {
        return std::nullopt;
    }
    const int hours = number(zone.substr(1, 2));
    const int minutes = number(zone.substr(4, 2));
    if (hours > 23 || minutes > 59) {
        return std::nullopt;
    }
    return std::chrono::minutes((zone[0] == '-' ? -1 : 1) * (hours * 60 + minutes));
}

}  // namespace

std::optional<std::chrono::sys_seconds> timeOf(std::string_view timestamp) {
    const std::string_view local = timestamp.substr(0, kDateAndTime.size());
    if (!hasForm(local, kDateAndTime)) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date(
        std::chrono::year(number(local.substr(0, 4))),
        std::chrono::month(static_cast<unsigned>(number(local.substr(5, 2)))),
        std::chrono::day(static_cast<unsigned>(number(local.substr(8, 2)))));
    const std::chrono::hours hours(number(local.substr(11, 2)));
    const std::chrono::minutes minutes(number(local.substr(14, 2)));
    const std::chrono::seconds seconds(number(local.substr(17, 2)));
    const std::string_view rest = timestamp.substr(local.size());
    const auto offset = offsetOf(rest.substr(fractionLength(rest)));
    const bool isLeapSecondAtMost = seconds.count() <= 60;
    if (!date.ok() || hours.count() > 23 || minutes.count() > 59 || !isLeapSecondAtMost ||
        !offset) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date) + hours + minutes + seconds - *offset;
}

std::int32_t nanosecondsOf(std::string_view timestamp) {
    constexpr std::string_view kWhole = ".000000000";
    const std::string_view rest = timestamp.substr(kDateAndTime.size());
    std::string fraction(rest.substr(0, fractionLength(rest)));
    fraction.resize(kWhole.size(), '0');
    return number(std::string_view(fraction).substr(1));
}

std::string localTime(std::chrono::sys_seconds time, const char* pattern) {
    tzset();  // The user may have changed the zone.
    const std::time_t seconds = time.time_since_epoch().count();
    std::tm local{};
    std::array<char, 64> text{};
    if (!localtime_r(&seconds, &local)) {
        return {};
    }
    return {text.data(), std::strftime(text.data(), text.size(), pattern, &local)};
}

}  // namespace text
