// The two patterns are those of the Unicode locale data; the C library's own locales are missing on
// a bare machine.

#include <array>
#include <ctime>

#include "platform/time_of_day.h"

namespace platform {

std::string mediumTimeOfDay(ORVFileDate date, const std::string& locale) {
    tzset();  // The user may have changed the zone.
    const std::time_t seconds = date.seconds;
    std::tm time{};
    if (!localtime_r(&seconds, &time)) {
        time = std::tm{};  // A year beyond an int.
    }
    // The space before AM and PM is a narrow one that does not break, U+202F.
    const char* pattern = locale == "zh_CN" ? "%H:%M:%S" : "%I:%M:%S\u202F%p";
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), pattern, &time);
    const bool hasLeadingZero = locale != "zh_CN" && text[0] == '0';
    return std::string(text.data(), length).substr(hasLeadingZero ? 1 : 0);
}

}  // namespace platform
