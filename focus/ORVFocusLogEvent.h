#pragma once

#include <optional>
#include <string>

/// What one log line says about the task in view. Exactly one of threadID, waitingForThread and
/// incompatibleFormat is set.
struct ORVFocusLogEvent {
    /// The first word of the line. It is compared as a string and never read as a date. When the
    /// event's window takes the focus again, the word of that line takes its place.
    std::string timestamp;

    std::optional<std::string> threadID;
    bool waitingForThread = false;    ///< A new task without a thread.
    bool incompatibleFormat = false;  ///< The right kind of line in an unexpected form.
};
