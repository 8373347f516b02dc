#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "sessions/ORVSessionSnapshot.h"

/// One step in the life of a task's context window: a token count that was understood, or a
/// compaction that was counted.
struct ORVHistoryEvent {
    /// The record's "timestamp", unchanged. The agent writes ISO 8601 in UTC,
    /// "2026-11-24T16:45:21.002Z"; another writer may have put any UTF-8 text there. "" when the
    /// record has no such string.
    std::string at;

    /// The usage that the token count gave. None for a compaction.
    std::optional<ORVContextUsage> usage;

    /// How many token counts a usage stands for: in a very long history the highest of several.
    std::size_t answers = 1;

    bool isCompaction() const { return !usage; }
};

/// Oldest event first.
using ORVHistory = std::vector<ORVHistoryEvent>;
