#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sessions/ORVSessionSnapshot.h"

/// What a task's compactions did to its context window.
namespace app {

/// One compaction of a task.
struct Compaction {
    std::size_t number = 0;  ///< 1 is the task's first.
    std::string at;          ///< As recorded; "" where the record has no time stamp.

    /// None where `at` is not a time stamp.
    std::optional<std::chrono::sys_seconds> time;

    /// The last usage between the compaction before and this one, and the first between this one
    /// and the next. None where none was told.
    std::optional<ORVContextUsage> before;
    std::optional<ORVContextUsage> after;

    /// How long, and how many answers, after the compaction before; for the first, after the task's
    /// first event. No time where either time is unknown, or the later one is the smaller.
    std::optional<std::chrono::seconds> elapsed;
    std::size_t answers = 0;

    /// Returns the tokens by which the input became smaller; below 0 when it grew. None unless both
    /// usages are known.
    std::optional<std::int64_t> shedTokens() const;
};

/// Returns the compactions of a whole history, the oldest first.
std::vector<Compaction> compactionsOf(const ORVHistory& history);

/// Removes what happened before `since`, and what has no time stamp. A compaction that stays keeps
/// its number, and its figures from what was before it.
void leaveOutOlder(std::chrono::sys_seconds since, ORVHistory& history,
                   std::vector<Compaction>& compactions);

}  // namespace app
