#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "sessions/ORVAgentFacts.h"

/// The account's rate limits as people read them.
namespace app {

/// Returns the length of a limit's window in whole days or hours, else in minutes: "7d", "5h",
/// "299m"; "--" where it is not known.
std::string windowText(const ORVRateLimit& limit);

/// Returns how much of a limit is used, in percent: 0 when its reset has passed, none when that is
/// not known.
std::optional<double> usedPercent(const ORVRateLimit& limit, ORVClock::TimePoint now);

/// Returns when the limit is reset, in the local time zone: "14:05", with the day when it is not
/// within the next 24 hours: "11-28 14:05". "" when that is not known, or has passed.
std::string resetText(const ORVRateLimit& limit, ORVClock::TimePoint now);

/// Returns "5h 42% · 7d 12%"; "" for none.
std::string rateLimitsText(const std::vector<ORVRateLimit>& limits, ORVClock::TimePoint now);

}  // namespace app
