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
        inView,      ///< The one that the desktop application has in view.
        latest,      ///< That of the most recently written session file.
        identified,  ///< The one with the thread identifier in `value`.
        inFolder,    ///< The one that works in the folder whose real path is in `value`.
    };

    Choice choice = Choice::inView;
    std::string value;
};

/// What a surface wants to know of every refresh.
struct ORVRefreshRequest {
    ORVShownTask task;
    bool wantsFolder = false;
    std::size_t eventsPerFile = 0;  ///< Of the task's history, at most; 0 for no history.
};

/// What one refresh found out.
struct ORVRefreshResults {
    ORVCodexFocusState focusState;
    std::optional<ORVSessionSnapshot> snapshot;
    ORVErrorSlot error;                 ///< May stand beside a snapshot.
    std::optional<std::string> folder;  ///< The snapshot's task works there.
    std::shared_ptr<const ORVHistory> history;
};

namespace app {

/// The part of a refresh that reads files. Refresh queue only.
ORVRefreshResults refreshFromFiles(const ORVRefreshRequest& request,
                                   ORVCodexFocusLogSource& focusSource,
                                   ORVCodexSessionSource& source);

/// Follows the task in view: asks which one is and, only if one is, for its snapshot. Both write
/// into one slot, so the error is the session source's if it reported one, else the focus source's.
ORVRefreshResults refreshFromFiles(ORVCodexFocusLogSource& focusSource,
                                   ORVAgentSessionSource& source);

}  // namespace app
