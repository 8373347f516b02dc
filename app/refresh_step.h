#pragma once

#include <optional>

#include "focus/ORVCodexFocusLogSource.h"
#include "sessions/ORVAgentSessionSource.h"

/// What one refresh found out.
struct ORVRefreshResults {
    ORVCodexFocusState focusState;
    std::optional<ORVSessionSnapshot> snapshot;  ///< Only for a task in view.
    ORVErrorSlot error;                          ///< May stand beside a snapshot.
};

namespace app {

/// The part of a refresh that reads files: asks which task is in view and, only if one is, for its
/// snapshot. Both write into one slot, so the error is the session source's if it reported one,
/// else the focus source's. Refresh queue only.
ORVRefreshResults refreshFromFiles(ORVCodexFocusLogSource& focusSource,
                                   ORVAgentSessionSource& source);

}  // namespace app
