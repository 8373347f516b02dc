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

/// An event and, of a compaction, what tells it from others: "" for an anonymous one.
struct ORVRecordedEvent {
    ORVHistoryEvent event;
    std::string compactionIdentifier;
};

/// How far one session file has been read, and what its records have said so far.
///
/// One per path, owned by the source's table and touched on the refresh queue only. A replaced or
/// shortened file gets a fresh state; fields are never reset one by one, so no figure of the old
/// file can survive.
struct ORVSessionParseState {
    /// Some record mentioned compaction, understood or not: compactionStatus means something.
    bool sawCompactionSignal = false;

    /// Bytes of the file already in memory. The last pendingData.size() of them have not been
    /// interpreted yet.
    std::uint64_t offset = 0;

    /// The line whose line feed has not arrived; at most ORVJSONReader::kMaxBytes.
    ORVByteBuffer pendingData;

    /// The line under way is longer than any that could be interpreted: its bytes are read and
    /// dropped until its line feed arrives.
    bool isPassingOverLine = false;

    /// Leading bytes of pendingData known to hold no line feed: always all of them, since
    /// each chunk is searched when it arrives.
    std::uint64_t pendingScanOffset = 0;

    /// Inode the bytes came from. None where the file system has no number; a file replaced by a
    /// longer one then goes unnoticed.
    std::optional<std::uint64_t> fileIdentifier;

    /// compactionIdentifiers.size() + anonymousCompactionCount.
    std::int64_t compactionCount = 0;

    /// Compactions without an identifier. Kept apart because a task's files are merged by the union
    /// of their identifiers and the sum of these.
    std::int64_t anonymousCompactionCount = 0;

    /// "current:" and the window's identifier, or "legacy:" and the event's time stamp.
    std::unordered_set<std::string> compactionIdentifiers;

    /// Changes whenever a record may have changed the figures; never the same for two states of the
    /// file.
    std::uint64_t revision = 0;

    /// What happened, in file order; empty unless the source keeps histories.
    std::vector<ORVRecordedEvent> history;

    // Once there were too many events, each point stands for the highest of several usages.
    std::size_t eventsPerPoint = 1;
    std::size_t eventsInLastPoint = 0;

    /// When there was not enough memory to read the file at its size of that moment.
    struct OutOfMemory {
        std::uint64_t fileSize;
        ORVClock::TimePoint at;
    };
    std::optional<OutOfMemory> outOfMemory;

    std::optional<ORVContextUsage> contextUsage;
    ORVContextStatus contextStatus = ORVContextStatusWaiting;
    ORVCompactionStatus compactionStatus = ORVCompactionStatusValid;
};
