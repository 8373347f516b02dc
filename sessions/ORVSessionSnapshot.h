#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"

/// How much of the model's context window the latest turn of a task took.
class ORVContextUsage {
public:
    ORVContextUsage(std::int64_t inputTokens, std::int64_t contextWindow)
        : inputTokens_(inputTokens), contextWindow_(contextWindow) {}

    /// Returns the tokens of the turn, "input_tokens" of the token count; 1 or more.
    std::int64_t inputTokens() const { return inputTokens_; }

    /// Returns the tokens that the window holds, "model_context_window"; 1 or more in a session.
    std::int64_t contextWindow() const { return contextWindow_; }

    /// Returns the tokens of the turn in percent of the window. A turn that exceeded the window
    /// gives more than 100; a window of less than one token gives 0.
    double percentage() const {
        if (contextWindow_ < 1) {
            return 0.0;
        }
        return static_cast<double>(inputTokens_) / static_cast<double>(contextWindow_) * 100.0;
    }

    bool operator==(const ORVContextUsage&) const = default;

private:
    std::int64_t inputTokens_;
    std::int64_t contextWindow_;
};

/// Whether the context figure can be shown.
enum ORVContextStatus : std::int64_t {
    ORVContextStatusAvailable = 0,     ///< The latest token count gave a usable figure.
    ORVContextStatusWaiting = 1,       ///< There is no figure yet, or a compaction removed it.
    ORVContextStatusIncompatible = 2,  ///< The latest token count had an unexpected shape.
};

/// Whether the compaction count can be trusted. The number 1 is left out so that "incompatible" has
/// the same number in both.
enum ORVCompactionStatus : std::int64_t {
    ORVCompactionStatusValid = 0,
    ORVCompactionStatusIncompatible = 2,  ///< A record about compaction was not understood.
};

/// The figures of a task at the moment of one refresh. A snapshot does not change; it is made on
/// the refresh queue and moved to the UI thread.
class ORVSessionSnapshot {
public:
    ORVSessionSnapshot(std::string title, std::string threadID, std::string fileURL,
                       std::int64_t compactionCount, std::optional<ORVContextUsage> contextUsage,
                       ORVContextStatus contextStatus, ORVCompactionStatus compactionStatus,
                       ORVFileDate lastUpdated)
        : title_(std::move(title)),
          threadID_(std::move(threadID)),
          fileURL_(std::move(fileURL)),
          compactionCount_(compactionCount),
          contextUsage_(contextUsage),
          contextStatus_(contextStatus),
          compactionStatus_(compactionStatus),
          lastUpdated_(lastUpdated) {}

    /// Returns the title from the title index, and "Codex" for a task without one. It is valid
    /// UTF-8 but may hold any characters, even ones that would steer a terminal.
    const std::string& title() const { return title_; }

    /// Returns the identifier in the spelling of the caller who asked for it, else in that of the
    /// file's name. When the name holds no identifier, it is the whole name. It may hold any bytes.
    const std::string& threadID() const { return threadID_; }

    /// Returns the absolute path of the task's newest session file, in the system's bytes.
    const std::string& fileURL() const { return fileURL_; }

    /// Returns how many different compactions the task's session files record.
    std::int64_t compactionCount() const { return compactionCount_; }

    /// Returns the usage in the newest file. While contextStatus is incompatible it may be that of
    /// an earlier turn.
    const std::optional<ORVContextUsage>& contextUsage() const { return contextUsage_; }
    ORVContextStatus contextStatus() const { return contextStatus_; }
    ORVCompactionStatus compactionStatus() const { return compactionStatus_; }

    /// Returns the modification date of the newest file.
    ORVFileDate lastUpdated() const { return lastUpdated_; }

private:
    std::string title_;
    std::string threadID_;
    std::string fileURL_;
    std::int64_t compactionCount_;
    std::optional<ORVContextUsage> contextUsage_;
    ORVContextStatus contextStatus_;
    ORVCompactionStatus compactionStatus_;
    ORVFileDate lastUpdated_;
};

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
