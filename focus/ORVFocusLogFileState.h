#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/ORVFollowedFile.h"

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

/// A window of the desktop application as the lines of one log file have described it so far.
struct ORVFocusWindowState {
    std::string windowID;  ///< Never empty. A line with another one is not about this window.
    bool primary = false;
    bool focused = false;
    bool visible = false;

    /// The event of the window's last owner-sync line. It is shared with the source's latestEvent_,
    /// because a new time stamp must show in both.
    std::shared_ptr<ORVFocusLogEvent> routeEvent;
};

/// How far one log file has been read, and the windows that its lines have described.
///
/// The state of a file that is no longer found is dropped.
struct ORVFocusLogFileState : ORVFollowedFile {
    /// By web-contents identifier. The same identifier in another file is another window.
    std::unordered_map<std::string, ORVFocusWindowState> windows;
};
