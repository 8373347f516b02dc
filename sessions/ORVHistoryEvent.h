#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sessions/ORVContextUsage.h"

/// One step in the life of a task's context window, as the records of its session files told it.
struct ORVHistoryEvent {
    /// The record's "timestamp", as written: valid UTF-8 of any kind, "" where it is no string.
    /// ISO 8601 in UTC where the agent wrote it: "2026-11-24T16:45:21.002Z".
    std::string at;

    /// What a token count set the usage to. None for a compaction that was counted.
    std::optional<ORVContextUsage> usage;

    bool isCompaction() const { return !usage; }
};

/// Oldest event first.
using ORVHistory = std::vector<ORVHistoryEvent>;
