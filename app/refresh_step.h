#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "focus/ORVCodexFocusLogSource.h"
#include "sessions/ORVCodexSessionSource.h"

/// Which task is shown.
struct ORVShownTask {
    enum class Choice {
        inView,      ///< The task that the desktop application has in view.
        latest,      ///< The task of the most recently written session file.
        identified,  ///< The task whose thread identifier is in `value`.
        inFolder,    ///< The task that works in the folder whose real path is in `value`.
    };

    Choice choice = Choice::inView;
    std::string value;
};

/// What a surface wants to know of every refresh.
struct ORVRefreshRequest {
    ORVShownTask task;
    bool wantsFolder = false;
    std::size_t eventsPerFile = 0;  ///< The longest history of a file; 0 for no history.
};

/// What one refresh found out.
struct ORVRefreshResults {
    ORVCodexFocusState focusState;
    std::optional<ORVSessionSnapshot> snapshot = {};
    ORVErrorSlot error = {};                         ///< May stand beside a snapshot.
    std::optional<std::string> folder = {};          ///< Where the snapshot's task works.
    std::shared_ptr<const ORVHistory> history = {};  ///< Null when it was not asked for.
};

namespace app {

/// Does the part of a refresh that reads files. Called on the refresh queue.
ORVRefreshResults refreshFromFiles(const ORVRefreshRequest& request,
                                   ORVCodexFocusLogSource& focusSource,
                                   ORVCodexSessionSource& source);

/// Asks which task is in view and, if there is one, for its snapshot. Both sources write into one
/// slot, in which an error of the session source replaces one of the focus source; only the error
/// that the task has no session file does not.
ORVRefreshResults refreshOfTaskInView(ORVCodexFocusLogSource& focusSource,
                                      ORVAgentSessionSource& source);

}  // namespace app
