#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/files.h"
#include "sessions/ORVContextUsage.h"
#include "sessions/status_codes.h"

/// What one refresh found out about a task. Immutable; made on the refresh queue and moved to the
/// UI thread.
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

    /// UTF-8, from the title index; "Codex" for a task without a title. Any characters, also ones
    /// that would steer a terminal.
    const std::string& title() const { return title_; }

    /// As the caller asked for it, else as in the file's name; the whole file name where that holds
    /// no identifier. Bytes of any kind.
    const std::string& threadID() const { return threadID_; }

    /// Absolute path of the session file with the latest figures. Bytes as the system gave them.
    const std::string& fileURL() const { return fileURL_; }

    /// Distinct compactions over all session files of the task.
    std::int64_t compactionCount() const { return compactionCount_; }

    /// Of the newest file. May hold an older figure while contextStatus is incompatible.
    const std::optional<ORVContextUsage>& contextUsage() const { return contextUsage_; }
    ORVContextStatus contextStatus() const { return contextStatus_; }
    ORVCompactionStatus compactionStatus() const { return compactionStatus_; }

    /// Modification date of the newest file.
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
