#include "app/refresh_step.h"

namespace app {

ORVRefreshResults refreshFromFiles(ORVCodexFocusLogSource& focusSource,
                                   ORVAgentSessionSource& source) {
    ORVErrorSlot error;
    ORVCodexFocusState focusState = focusSource.currentFocusStateWithError(&error);
    std::optional<ORVSessionSnapshot> snapshot;
    if (focusState.status() == ORVCodexFocusStatusTaskInView) {
        snapshot = source.snapshotForThreadID(*focusState.threadID(), &error);
    }
    return {std::move(focusState), std::move(snapshot), std::move(error)};
}

}  // namespace app
