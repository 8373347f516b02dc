#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "text/timestamps.h"

namespace {

/// Returns the seconds since 1970, and -1 for a text that is no time stamp.
long long secondsOf(std::string_view timestamp) {
    const auto time = text::timeOf(timestamp);
    return time ? time->time_since_epoch().count() : -1;
}

TEST(TimestampsTest, OnlyWholeTimeStampsOfRealTimesAreRead) {
    const std::pair<const char*, long long> kCases[] = {
        {"1970-01-01T00:00:00Z", 0},
        {"2026-11-24T16:45:21Z", 1795538721},
        {"2026-11-24T16:45:21.002Z", 1795538721},
        {"2026-11-24T16:45:21.999999999999999999999999999999999Z", 1795538721},
        {"2026-11-25T00:45:21+08:00", 1795538721},
        {"2026-11-24T11:15:21.5-05:30", 1795538721},
        {"2024-02-29T23:59:60Z", 1709251200},
        {"0000-01-01T00:00:00+23:59", -62167305540},
        {"9999-12-31T23:59:59-23:59", 253402387139}};
    for (const auto& [timestamp, seconds] : kCases) {
        EXPECT_EQ(seconds, secondsOf(timestamp)) << timestamp;
    }
    std::istringstream others(
        "2023-02-29T00:00:00Z|2026-00-24T16:45:21Z|2026-11-31T16:45:21Z|2026-11-24T24:00:00Z|"
        "2026-11-24T16:60:00Z|2026-11-24T16:45:61Z|2026-11-24T16:45:21|2026-11-24T16:45:21.Z|"
        "2026-11-24T16:45:21.5|2026-11-24T16:45:21,5Z|2026-11-24T16:45:21z|2026-11-24T16:45:21ZZ|"
        "2026-11-24T16:45:21 Z|2026-11-24T16:45:21+0800|2026-11-24T16:45:21+24:00|"
        "2026-11-24T16:45:21+08:60|2026-11-24T16:45:21*08:00|2026-11-24 16:45:21Z|"
        "2026-11-24T16:45Z| 2026-11-24T16:45:21Z|-026-11-24T16:45:21Z|2026-11-24T1x:45:21Z||"
        "\x1b[31m\xFF");
    for (std::string other; std::getline(others, other, '|');) {
        EXPECT_EQ(-1, secondsOf(other)) << other;
    }
    const std::string whole = "2026-11-24T16:45:21.002+08:00";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(-1, secondsOf(whole.substr(0, length))) << length;
    }
    EXPECT_EQ(2'000'000, text::nanosecondsOf(whole));
    EXPECT_EQ(0, text::nanosecondsOf("2026-11-24T16:45:21Z"));
    EXPECT_EQ(123'456'789, text::nanosecondsOf("2026-11-24T16:45:21.12345678987Z"));
}

TEST(TimestampsTest, TimesAreShownInTheZoneOfTheUser) {
    const auto inZone = [](const char* zone, const char* timestamp) {
        setenv("TZ", zone, 1);
        return text::localTime(*text::timeOf(timestamp), "%Y-%m-%d %H:%M");
    };
    EXPECT_EQ("2026-11-24 16:45", inZone("UTC0", "2026-11-24T16:45:21Z"));
    EXPECT_EQ("2026-11-25 00:45", inZone("CST-8", "2026-11-24T16:45:21Z"));
    EXPECT_EQ("2026-07-01 08:00", inZone("EST5EDT,M3.2.0,M11.1.0", "2026-07-01T12:00:00Z"));
    EXPECT_EQ("2026-12-01 07:00", inZone("EST5EDT,M3.2.0,M11.1.0", "2026-12-01T12:00:00Z"));
    unsetenv("TZ");
    tzset();
}

}  // namespace
