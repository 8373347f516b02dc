#pragma once

#include <memory>
#include <string>

#include "focus/ORVFocusLogEvent.h"

/// A window of the desktop application as one log file has shown it so far.
struct ORVFocusWindowState {
    std::string windowID;  ///< Never empty: a line with another one is not about this window.
    bool primary = false;
    bool focused = false;
    bool visible = false;

    /// What the window's last owner-sync line said. Shared with the source's latestEvent: a new
    /// time stamp must show in both.
    std::shared_ptr<ORVFocusLogEvent> routeEvent;
};
