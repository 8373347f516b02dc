// What a refresh reads, and the only place that decides which task is shown. When the user has
// named a task, the logs are not read, and a focus state is made up that makes the menu say why
// nothing is shown. Tests: tests/app/refresh_step_test.cpp.

#include "app/refresh_step.h"

#include <cerrno>
#include <new>
#include <utility>

#include "sessions/errors.h"

namespace app {
namespace {

std::optional<ORVSessionSnapshot> snapshotOf(const ORVShownTask& task,
                                             ORVCodexSessionSource& source, ORVErrorSlot* error) {
    switch (task.choice) {
        case ORVShownTask::Choice::inView:
            break;
        case ORVShownTask::Choice::latest:
            return source.latestSnapshotWithError(error);
        case ORVShownTask::Choice::identified:
            return source.snapshotForThreadID(task.value, error);
        case ORVShownTask::Choice::inFolder:
            return source.snapshotForFolder(task.value, error);
    }
    return std::nullopt;
}

ORVCodexFocusState focusStateFor(const std::optional<ORVSessionSnapshot>& snapshot,
                                 const ORVErrorSlot& error) {
    const bool isFolderMissing = !snapshot && error && error->domain == sessions::kErrorDomain &&
                                 error->code == sessions::ORVErrorSessionsDirectoryMissing;
    return {isFolderMissing ? ORVCodexFocusStatusLogsUnavailable : ORVCodexFocusStatusTaskInView,
            snapshot ? std::optional(snapshot->threadID()) : std::nullopt, std::nullopt, ""};
}

ORVRefreshResults refreshOfChosenTask(const ORVShownTask& task, ORVCodexSessionSource& source) {
    ORVErrorSlot error;
    auto snapshot = snapshotOf(task, source, &error);
    ORVCodexFocusState focusState = focusStateFor(snapshot, error);
    return {std::move(focusState), std::move(snapshot), std::move(error)};
}

}  // namespace

ORVRefreshResults refreshFromFiles(const ORVRefreshRequest& request,
                                   ORVCodexFocusLogSource& focusSource,
                                   ORVCodexSessionSource& source) {
    try {
        ORVRefreshResults results = request.task.choice == ORVShownTask::Choice::inView
                                        ? refreshOfTaskInView(focusSource, source)
                                        : refreshOfChosenTask(request.task, source);
        if (results.snapshot && request.wantsFolder) {
            results.folder = source.workingFolderForSessionURL(results.snapshot->fileURL());
        }
        if (results.snapshot && request.eventsPerFile > 0) {
            results.history = source.historyForThreadID(results.snapshot->threadID());
        }
        return results;
    } catch (const std::bad_alloc&) {
        // The sources handle a file that is too large for the memory. This is for everything else,
        // such as a walk over very many files.
        return {.focusState = {ORVCodexFocusStatusTaskInView, std::nullopt, std::nullopt, ""},
                .error = platform::posixError(ENOMEM)};
    }
}

ORVRefreshResults refreshOfTaskInView(ORVCodexFocusLogSource& focusSource,
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
