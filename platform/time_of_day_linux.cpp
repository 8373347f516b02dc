// Writes the time by the language's pattern, since a bare machine lacks the C library's locales.
// Tests: tests/platform/linux_test.cpp.

#include <array>
#include <ctime>
#include <string_view>

#include "platform/time_of_day.h"

namespace platform {

std::string mediumTimeOfDay(ORVFileDate date, const ORVTimeFormat& format) {
    tzset();  // The user may have changed the zone.
    const std::time_t seconds = date.seconds;
    std::tm time{};
    if (!localtime_r(&seconds, &time)) {
        time = std::tm{};  // The year does not fit into an int.
    }
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), format.pattern, &time);
    const bool dropsZero = std::string_view(format.pattern).starts_with("%I") && text[0] == '0';
    return std::string(text.data(), length).substr(dropsZero ? 1 : 0);
}

}  // namespace platform
