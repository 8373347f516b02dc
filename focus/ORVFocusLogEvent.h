#pragma once

#include <optional>
#include <string>

/// What one log line said of the task in view. Exactly one of threadID, waitingForThread and
/// incompatibleFormat is set.
struct ORVFocusLogEvent {
    /// First word of the line, compared as a string and never read as a date. Rewritten when the
    /// event's window takes the focus again.
    std::string timestamp;

    std::optional<std::string> threadID;
    bool waitingForThread = false;    ///< A new task without a thread.
    bool incompatibleFormat = false;  ///< The right kind of line in an unexpected form.
};
