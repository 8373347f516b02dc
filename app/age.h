#pragma once

#include <chrono>
#include <string>

#include "platform/clock.h"
#include "platform/files.h"

namespace app {

/// Returns how long ago the date was; 0 for a date in the future.
std::chrono::seconds age(ORVFileDate date, ORVClock::TimePoint now);

/// Returns the same in its largest unit, rounded down: "12s", "3m", "2h", "5d".
std::string ageText(ORVFileDate date, ORVClock::TimePoint now);

}  // namespace app
