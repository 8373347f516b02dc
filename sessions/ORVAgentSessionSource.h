#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ORVError.h"
#include "sessions/ORVSessionSnapshot.h"

/// What the application asks of an agent's session data. Refresh queue only.
class ORVAgentSessionSource {
public:
    virtual ~ORVAgentSessionSource() = default;

    /// The task of the most recently written session file. None, without an error, where there is
    /// no session file.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> latestSnapshotWithError(
        ORVErrorSlot* error) = 0;

    /// The task with this identifier, summed over all its session files. None, always with an error
    /// in the slot unless a file lacks a size or a date, when any of them cannot be read.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> snapshotForThreadID(
        std::string_view threadID, ORVErrorSlot* error) = 0;

    /// Titles by thread identifier.
    [[nodiscard]] virtual std::map<std::string, std::string> threadTitles() = 0;
};
