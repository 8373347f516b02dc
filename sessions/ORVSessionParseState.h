#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/ORVFollowedFile.h"
#include "sessions/ORVAgentFacts.h"
#include "sessions/ORVSessionSnapshot.h"

/// An event of one file.
struct ORVRecordedEvent {
    ORVHistoryEvent event;
    std::string compactionIdentifier;  ///< "" for a usage, and for a compaction without one.
};

/// How far one session file has been read, and what its records have said so far.
struct ORVSessionParseState : ORVFollowedFile {
    /// Whether some record was about compaction, understood or not. Before the first of them
    /// compactionStatus says nothing.
    bool sawCompactionSignal = false;

    /// How many leading bytes of pendingData are known to hold no line feed: always all of them,
    /// since each chunk is searched when it arrives. Nothing reads it.
    std::uint64_t pendingScanOffset = 0;

    /// The sum of compactionIdentifiers.size() and anonymousCompactionCount.
    std::int64_t compactionCount = 0;

    /// Counts the compactions without an identifier. They are kept apart because the files of a
    /// task are merged by the union of their identifiers and the sum of these counts.
    std::int64_t anonymousCompactionCount = 0;

    /// "current:" and the window's identifier, or "legacy:" and the event's time stamp.
    std::unordered_set<std::string> compactionIdentifiers;

    /// A number that changes whenever a record may have changed the figures. No two states of any
    /// files share one.
    std::uint64_t revision = 0;

    /// What happened, in file order; empty unless histories are wanted.
    std::vector<ORVRecordedEvent> history;

    std::unique_ptr<ORVRecordedFacts> facts;  ///< Null unless they are wanted.

    /// How many usages one event may stand for: grows when there were too many events.
    std::size_t answersPerEvent = 1;

    std::optional<ORVContextUsage> contextUsage;
    ORVContextStatus contextStatus = ORVContextStatusWaiting;
    ORVCompactionStatus compactionStatus = ORVCompactionStatusValid;
};
