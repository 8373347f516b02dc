#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ORVError.h"
#include "sessions/ORVSessionSnapshot.h"

/// The questions that the application asks about an agent's session data, on the refresh queue.
class ORVAgentSessionSource {
public:
    virtual ~ORVAgentSessionSource() = default;

    /// Returns the task of the most recently written session file. Returns none, without an error,
    /// when there is no session file.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> latestSnapshotWithError(
        ORVErrorSlot* error) = 0;

    /// Returns the snapshot of the task with this identifier, summed over all its session files.
    /// Returns none when the task has no file or one of them cannot be read. The slot then holds an
    /// error, unless the reason is that the file system gave no size or no date.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> snapshotForThreadID(
        std::string_view threadID, ORVErrorSlot* error) = 0;

    /// Returns the titles of all tasks by thread identifier.
    [[nodiscard]] virtual std::map<std::string, std::string> threadTitles() = 0;
};
