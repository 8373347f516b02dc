#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/clock.h"
#include "sessions/ORVContextUsage.h"
#include "sessions/ORVHistoryEvent.h"
#include "sessions/status_codes.h"
#include "text/byte_buffer.h"

/// An event of one file.
struct ORVRecordedEvent {
    ORVHistoryEvent event;
    std::string compactionIdentifier;  ///< "" for a usage, and for a compaction without one.
};

/// How far one session file has been read, and what its records have said so far.
///
/// The source owns one for each path. A replaced or shortened file gets a fresh state; fields are
/// never reset one by one, so no figure of the old file can survive.
struct ORVSessionParseState {
    /// Whether some record was about compaction, understood or not. Before the first of them
    /// compactionStatus says nothing.
    bool sawCompactionSignal = false;

    /// How many bytes of the file have been read. The last pendingData.size() of them have not been
    /// interpreted yet.
    std::uint64_t offset = 0;

    /// The line whose line feed has not arrived; at most ORVJSONReader::kMaxBytes.
    ORVByteBuffer pendingData;

    /// Whether the line that is being read is longer than any that can be interpreted. Its bytes
    /// are dropped until its line feed arrives.
    bool isPassingOverLine = false;

    /// How many leading bytes of pendingData are known to hold no line feed: always all of them,
    /// since each chunk is searched when it arrives.
    std::uint64_t pendingScanOffset = 0;

    /// The inode of the file that the bytes came from. None when the file system has no numbers; a
    /// file that is replaced by a longer one then goes unnoticed.
    std::optional<std::uint64_t> fileIdentifier;

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

    /// What happened, in file order; empty unless the source keeps histories.
    std::vector<ORVRecordedEvent> history;

    // When there were too many events, each point stands for the highest of several usages.
    std::size_t eventsPerPoint = 1;
    std::size_t eventsInLastPoint = 0;

    /// Remembers when there was not enough memory to read the file, and its size at that moment.
    struct OutOfMemory {
        std::uint64_t fileSize;
        ORVClock::TimePoint at;
    };
    std::optional<OutOfMemory> outOfMemory;

    std::optional<ORVContextUsage> contextUsage;
    ORVContextStatus contextStatus = ORVContextStatusWaiting;
    ORVCompactionStatus compactionStatus = ORVCompactionStatusValid;
};
