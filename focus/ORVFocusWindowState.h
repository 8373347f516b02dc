#pragma once

#include <memory>
#include <string>

#include "focus/ORVFocusLogEvent.h"

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
