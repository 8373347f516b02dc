#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ORVError.h"
#include "sessions/ORVSessionSnapshot.h"

/// The questions that the application asks about an agent's session data. Used on the refresh queue
/// only.
class ORVAgentSessionSource {
public:
    virtual ~ORVAgentSessionSource() = default;

    /// Returns the task of the most recently written session file. Returns none, without an error,
    /// when there is no session file.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> latestSnapshotWithError(
        ORVErrorSlot* error) = 0;

    /// Returns the task with this identifier, summed over all its session files. Returns none when
    /// any of the files cannot be read; the slot then holds an error, unless the reason is that the
    /// file system tells no size or no date.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> snapshotForThreadID(
        std::string_view threadID, ORVErrorSlot* error) = 0;

    /// Returns the titles of all tasks by thread identifier.
    [[nodiscard]] virtual std::map<std::string, std::string> threadTitles() = 0;
};
