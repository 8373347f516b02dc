// Which task is meant: the one in view, the newest, the newest of a folder, or one with an
// identifier. Tests: tests/app/task_viewer_test.cpp.

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "app/ORVTaskViewer.h"
#include "app/figures.h"
#include "sessions/ORVSessionSearch.h"
#include "text/bytes.h"

namespace {

constexpr std::chrono::seconds kStay(10);

ORVAbsence absenceFor(const ORVErrorSlot& error) {
    if (!error || error->domain != sessions::kErrorDomain) {
        return ORVAbsence::unreadable;
    }
    return error->code == sessions::ORVErrorSessionsDirectoryMissing ? ORVAbsence::noSessionsFolder
                                                                     : ORVAbsence::noSuchTask;
}

}  // namespace

const ORVContextUsage* ORVTaskView::usage() const {
    return snapshot ? app::shownUsage(*snapshot) : nullptr;
}

std::optional<double> ORVTaskView::percentage() const {
    return usage() ? std::optional(usage()->percentage()) : std::nullopt;
}

ORVCodexFocusStatus ORVTaskView::focusStatus() const {
    if (focusState) {
        return focusState->status();
    }
    return absence == ORVAbsence::noSessionsFolder ? ORVCodexFocusStatusLogsUnavailable
                                                   : ORVCodexFocusStatusTaskInView;
}

ORVTaskViewer::ORVTaskViewer(ORVFiles& files, const ORVClock& clock, const std::string& codexHome,
                             ORVTaskWants wants)
    : clock_(clock),
      wants_(wants),
      sessions_(files, clock, codexHome,
                {.eventsPerFile = wants.eventsPerFile, .agentFacts = wants.agent}),
      focus_(files, clock),
      tasks_(files, clock, sessions_.sessionsFolder()) {}

std::vector<std::string> ORVTaskViewer::placesToRead() const {
    return {text::folderOf(sessions_.sessionsFolder()), sessions_.sessionsFolder(),
            sessions_.titleIndexPath(), focus_.logsRoot(), focus_.infoPlistPath()};
}

ORVTaskView ORVTaskViewer::view(const ORVShownTask& task) {
    try {
        if (std::exchange(lastTask_, task) != task) {
            sessions_.forgetFiles();  // Nobody asks for the task before any more.
        }
        switch (task.choice) {
            case ORVShownTask::Choice::inView:
                return viewOfTaskInView();
            case ORVShownTask::Choice::identified:
                return viewOfGiven(task.value);
            case ORVShownTask::Choice::latest:
            case ORVShownTask::Choice::inFolder:
                return viewOfHead(task);
            case ORVShownTask::Choice::none:
                break;
        }
        return {.absence = ORVAbsence::noSuchTask};
    } catch (const std::bad_alloc&) {
        // The sources handle a file that is too large for the memory. This is for everything else,
        // such as a walk over very many files.
        return {.error = platform::posixError(ENOMEM), .absence = ORVAbsence::unreadable};
    }
}

/// Both sources write into one slot, in which an error of the session source replaces one of the
/// focus source; only the error that the task has no session file does not.
ORVTaskView ORVTaskViewer::viewOfTaskInView() {
    ORVTaskView view;
    view.focusState =
        std::make_shared<const ORVCodexFocusState>(focus_.currentFocusStateWithError(&view.error));
    if (view.focusState->status() == ORVCodexFocusStatusTaskInView) {
        view.snapshot = sessions_.snapshotForThreadID(*view.focusState->threadID(), &view.error);
    }
    view.absence = view.snapshot ? ORVAbsence::none : ORVAbsence::notInView;
    if (wants_.advice && !view.snapshot) {
        view.hasSessionFiles = tasks_.refresh(nullptr) && tasks_.tree().fileCount() > 0;
    }
    fill(view);
    return view;
}

ORVTaskView ORVTaskViewer::viewOfGiven(const std::string& identifier) {
    if (const auto listed = list_ ? list_->taskWithIdentifier(identifier) : std::nullopt) {
        list_->follow(listed->task);
        sessions_.refreshTitleIndexIfNeeded();
        return viewOfListed(*listed);
    }
    return text::isUUID(identifier) ? viewOfIdentified(identifier) : viewOfPart(identifier);
}

ORVTaskView ORVTaskViewer::viewOfIdentified(const std::string& threadID) {
    ORVTaskView view;
    view.snapshot = sessions_.snapshotForThreadID(threadID, &view.error);
    view.absence = view.snapshot ? ORVAbsence::none : absenceFor(view.error);
    fill(view);
    return view;
}

ORVTaskView ORVTaskViewer::viewOfPart(const std::string& part) {
    const auto known = meanings_.find(part);
    if (known != meanings_.end()) {
        return viewOfIdentified(known->second);
    }
    ORVTaskView view;
    if (!refreshTasks(view)) {
        return view;
    }
    const std::vector<ORVTask> tasks = tasks_.matching(part);
    if (tasks.size() > 1) {
        return severalTasks(tasks);
    }
    if (tasks.empty()) {
        view.error = sessions::threadSessionMissing();
        view.absence = ORVAbsence::noSuchTask;
        return view;
    }
    meanings_.emplace(part, tasks.front().threadID);
    return viewOfIdentified(tasks.front().threadID);
}

std::optional<ORVTaskView> ORVTaskViewer::severalMeantBy(const std::string& part) {
    const bool isWhole = text::isUUID(part) || !tasks_.refresh(nullptr);
    const std::vector<ORVTask> tasks = isWhole ? std::vector<ORVTask>() : tasks_.matching(part);
    return tasks.size() > 1 ? std::optional(severalTasks(tasks)) : std::nullopt;
}

ORVTaskView ORVTaskViewer::severalTasks(const std::vector<ORVTask>& tasks) {
    constexpr std::size_t kNamed = 5;
    ORVTaskView view;
    view.absence = ORVAbsence::severalTasks;
    view.error = ORVError{
        "brimletctl", 3, std::to_string(tasks.size()) + " tasks have an identifier with this part"};
    view.choiceCount = tasks.size();
    const auto titles = sessions_.threadTitles();
    for (std::size_t i = 0; i < std::min(kNamed, tasks.size()); ++i) {
        const auto title = titles.find(tasks[i].threadID);
        view.choices.push_back({tasks_.shortIdentifier(tasks[i]),
                                title == titles.end() ? "Codex" : title->second,
                                tasks[i].newestFile().modifiedAt});
    }
    return view;
}

ORVTaskView ORVTaskViewer::viewOfHead(const ORVShownTask& task) {
    ORVTaskView view;
    if (!refreshTasks(view)) {
        shown_.reset();
        return view;
    }
    const bool isInFolder = task.choice == ORVShownTask::Choice::inFolder;
    const auto head =
        headThatStays(isInFolder ? tasks_.headForFolder(task.value) : tasks_.newestHead());
    if (!head) {
        view.absence = isInFolder ? ORVAbsence::noTaskInFolder : ORVAbsence::noSessionFile;
        return view;
    }
    tasks_.follow(head->task);
    sessions_.refreshTitleIndexIfNeeded();
    return viewOfListed(*head);
}

/// Returns the head that was shown before while its family was seen to change lately, else the
/// candidate.
std::optional<ORVListedTask> ORVTaskViewer::headThatStays(std::optional<ORVListedTask> candidate) {
    const ORVClock::TimePoint now = clock_.now();
    std::optional<ORVListedTask> current =
        shown_ && candidate ? tasks_.headOfFamily(shown_->threadID, shown_->path) : std::nullopt;
    std::optional<ORVClock::TimePoint> sawChangeAt;
    if (current) {
        sawChangeAt = current->changedAt != shown_->changedAt ? now : shown_->sawChangeAt;
        const bool isOther = current->task.threadID != candidate->task.threadID;
        const bool isQuiet = !sawChangeAt || now - *sawChangeAt >= kStay;
        if (isOther && (candidate->isNew || isQuiet)) {
            current = std::move(candidate);
            sawChangeAt = now;  // It came to the front because it changed.
        }
    } else {
        current = std::move(candidate);
    }
    shown_.reset();
    if (current) {
        shown_ = Shown{current->task.threadID, current->task.newestFile().path, current->changedAt,
                       sawChangeAt};
    }
    return current;
}

/// Brings the list of tasks up to date. Returns false, with the reason in the view, when there is
/// no sessions folder that can be read.
bool ORVTaskViewer::refreshTasks(ORVTaskView& view) {
    if (tasks_.refresh(nullptr)) {
        return true;
    }
    view.error = sessions::sessionsDirectoryMissing();
    view.absence = ORVAbsence::noSessionsFolder;
    return false;
}

/// Adds what is wanted of a task that is shown by its identifier.
void ORVTaskViewer::fill(ORVTaskView& view) {
    if (!view.snapshot) {
        return;
    }
    const ORVSessionSnapshot& snapshot = *view.snapshot;
    view.threadID = snapshot.threadID();
    view.changedAt = snapshot.lastUpdated();
    if (wants_.agent) {
        view.agent = sessions_.agentFactsForThreadID(view.threadID);
    }
    if (wants_.eventsPerFile > 0) {
        view.history = sessions_.historyForThreadID(view.threadID);
    }
    if ((wants_.folder || wants_.shortID) && tasks_.refresh(nullptr)) {
        if (const auto listed = tasks_.taskWithIdentifier(view.threadID, snapshot.fileURL())) {
            view.folder = listed->firstLine.folder;
            view.shortID = tasks_.shortIdentifier(listed->task);
        }
    }
}
