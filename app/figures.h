#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVAgentFacts.h"
#include "sessions/ORVSessionSnapshot.h"

/// Figures as everybody sees them: which may be shown, how they are rounded and written, and which
/// are high. Every surface takes them from here, so that no two of them disagree.
namespace app {

/// How full a context window is, in the steps that have a colour or a name of their own.
enum class Fullness { unknown, low, medium, high, full };

/// Returns the step of a percentage: low below 50, medium below 80, high below 95, else full.
Fullness fullnessOf(std::optional<double> percentage);

/// Returns the usage that may be shown; null while there is none, or none that can be trusted.
const ORVContextUsage* shownUsage(const ORVSessionSnapshot& snapshot);

/// The text in the menu bar for a task, which is the same in every language: the number of
/// compactions and how much of the context window is in use, "C3 · 47%". A count that cannot be
/// trusted is shown as "C–", a usage that is not known as "--%".
struct StatusTitle {
    std::string compactions;  ///< "C3"
    std::string usage;        ///< "47%"

    std::string text() const { return compactions + " · " + usage; }
};
StatusTitle statusTitle(const ORVSessionSnapshot& snapshot);

/// Returns a percentage rounded to a whole number.
std::string wholePercent(double percentage);

inline constexpr int kBarCells = 10;

/// Returns kBarCells cells that are filled in proportion: "█████░░░░░".
std::string bar(double percentage);

/// Returns "999", "1k", "12.3k": the decimal is left out when a whole number of thousands is less
/// than 0.05 away.
std::string tokenCount(std::int64_t count);

/// Returns how long ago the date was; 0 for a date in the future. An inode may hold any number of
/// seconds.
std::chrono::seconds age(ORVFileDate date, ORVClock::TimePoint now);

/// Returns a time in its largest unit, rounded down: "12s", "3m", "2h", "5d".
std::string ageText(std::chrono::seconds age);

// The account's rate limits

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
