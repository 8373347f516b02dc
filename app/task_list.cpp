// Lists of tasks: which tasks they hold, and reading those that have changed.
// Tests: tests/app/task_viewer_test.cpp.

#include <algorithm>
#include <cerrno>
#include <new>
#include <span>
#include <utility>

#include "app/ORVTaskViewer.h"

namespace {

/// So many tasks are read before the memory for their files is freed.
constexpr std::size_t kBatch = 256;

/// Returns the date so long before this moment.
ORVFileDate before(ORVClock::TimePoint now, std::chrono::seconds age) {
    // In seconds: nanoseconds would overflow for a long time.
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now.time_since_epoch()) - age;
    return {seconds.count(), 0};
}

/// Returns what fills a screen without the first lines of all files.
ORVListRequest beginningOf(ORVListRequest request) {
    const bool isShort = request.limit > 0 && request.limit < request.readAtOnce;
    request.limit = isShort ? request.limit : request.readAtOnce;
    request.showsHelpers = false;
    request.countsHelpers = false;
    return request;
}

void appendFiles(std::vector<const ORVWalkedFile*>& files, const ORVListedTask& task) {
    files.insert(files.end(), task.task.files.begin(), task.task.files.end());
}

}  // namespace

std::optional<ORVFileDate> ORVTaskViewer::sinceOf(const ORVListRequest& request) const {
    return request.since ? std::optional(before(clock_.now(), *request.since)) : std::nullopt;
}

std::vector<ORVListedTask> ORVTaskViewer::listed(const ORVListRequest& request,
                                                 const std::optional<ORVFileDate>& since) {
    ORVTaskList::Wanted wanted;
    wanted.limit = request.limit;
    wanted.folder = request.folder;
    using Helpers = ORVTaskList::Wanted::Helpers;
    wanted.helpers = request.showsHelpers    ? Helpers::listed
                     : request.countsHelpers ? Helpers::counted
                                             : Helpers::none;
    wanted.changedSince = since;
    return tasks_.heads(wanted);
}

ORVTaskListView ORVTaskViewer::beginList() {
    ORVTaskListView view;
    view.hasSessionsFolder = tasks_.refresh(nullptr);
    view.mayHaveFiles = tasks_.tree().fileCount() > 0 || !tasks_.tree().unreadable().empty();
    sessions_.refreshTitleIndexIfNeeded();
    return view;
}

std::shared_ptr<const ORVTaskListView> ORVTaskViewer::list(const ORVListRequest& request) {
    auto result = std::make_shared<ORVTaskListView>(beginList());
    ORVTaskListView& view = *result;
    if (keptTitlesDate_ != sessions_.titleIndexDate()) {
        keptTitlesDate_ = sessions_.titleIndexDate();
        kept_.clear();
        keptList_ = {};
    }
    const auto since = sinceOf(request);
    if (isKept(request, since) && keptList_.list->hasSessionsFolder == view.hasSessionsFolder &&
        keptList_.list->mayHaveFiles == view.mayHaveFiles) {
        return keptList_.list;
    }
    const bool isBeginning = request.readAtOnce > 0 && !std::exchange(hasListed_, true);
    const std::vector<ORVListedTask> tasks =
        listed(isBeginning ? beginningOf(request) : request, since);
    std::vector<std::size_t> unread = placeTasks(view.tasks, tasks);
    const std::size_t most = request.readAtOnce > 0 ? request.readAtOnce : unread.size();
    view.isComplete = unread.size() <= most && !isBeginning;
    unread.resize(std::min(unread.size(), most));
    std::vector<const ORVWalkedFile*> files;
    for (const std::size_t place : unread) {
        appendFiles(files, tasks[place]);
    }
    sessions_.readAhead(files, {});
    for (const std::size_t place : unread) {
        view.tasks[place] = viewOfListed(tasks[place]);
    }
    const bool isWhole = keep(view, tasks) && !isBeginning;
    keptList_ = {isWhole ? result : nullptr, request, since, tasks_.revision()};
    return result;
}

ORVTaskListView ORVTaskViewer::listOnce(const ORVListRequest& request, const Progress& progress) {
    ORVTaskListView view = beginList();
    const bool wantsEverything = request.limit == 0 && !request.folder && !request.since;
    if (wantsEverything) {
        readEverything(request, progress);
    }
    std::vector<ORVListedTask> tasks = listed(request, sinceOf(request));
    view.tasks.reserve(tasks.size());
    std::size_t total = 0;
    for (const ORVListedTask& task : tasks) {
        total += task.task.files.size();
    }
    std::size_t before = 0;  // Files of the batches before.
    const auto tell = [&](std::size_t done) {
        if (!wantsEverything) {
            progress(before + done, total);
        }
    };
    tell(0);
    while (view.tasks.size() < tasks.size()) {
        const std::size_t first = view.tasks.size();
        const auto batch = std::span(tasks).subspan(first, std::min(kBatch, tasks.size() - first));
        std::vector<const ORVWalkedFile*> files;
        for (const ORVListedTask& task : batch) {
            appendFiles(files, task);
        }
        sessions_.readAhead(files, {{}, tell});
        before += files.size();
        for (ORVListedTask& task : batch) {
            view.tasks.push_back(viewOfListed(task));
            sessions_.forget(task.task);
            task = {};  // Its memory serves the next views.
        }
    }
    return view;
}

std::vector<const ORVWalkedFile*> ORVTaskViewer::allFiles() const {
    std::vector<const ORVWalkedFile*> files;
    tasks_.tree().forEachFile([&](const ORVWalkedFile& file) { files.push_back(&file); });
    return files;
}

/// Reads all files, and takes their first lines from the same reads, so that none is opened twice.
/// Passes over those that prove to be helpers', unless helpers are shown.
void ORVTaskViewer::readEverything(const ORVListRequest& request, const Progress& progress) {
    const std::vector<const ORVWalkedFile*> files = allFiles();
    progress(0, files.size());
    tasks_.firstLines().reserve(files.size());
    sessions_.readAhead(
        files, {[&](const ORVWalkedFile& file, std::string_view bytes, ORVJSONReader& json) {
                    const auto* const line = tasks_.firstLines().takeFrom(bytes, file, json);
                    return request.showsHelpers || !line || !line->isHelper;
                },
                [&](std::size_t done) { progress(done, files.size()); }});
}

/// Makes a row of each task, with what is kept of it, and returns the places of the others, which
/// must be read. Of tasks that are not among these, nothing is kept any more.
std::vector<std::size_t> ORVTaskViewer::placeTasks(std::vector<ORVTaskView>& rows,
                                                   const std::vector<ORVListedTask>& tasks) {
    KeptViews known = std::exchange(kept_, {});
    std::vector<std::size_t> unread;
    rows.reserve(tasks.size());
    for (const ORVListedTask& task : tasks) {
        const auto found = known.find(task.task.threadID);
        if (found != known.end() && found->second.filesRevision == task.filesRevision) {
            rows.push_back(std::move(found->second.view));
            known.erase(found);
        } else {
            unread.push_back(rows.size());
            rows.emplace_back().isRead = false;
        }
        placeInFamily(rows.back(), task);
    }
    return unread;
}

/// Whether nothing in the last list can have changed. Time makes tasks too old for a list, but none
/// young enough unless the clock is set back.
bool ORVTaskViewer::isKept(const ORVListRequest& request,
                           const std::optional<ORVFileDate>& since) const {
    if (!keptList_.list || keptList_.request != request ||
        keptList_.revision != tasks_.revision()) {
        return false;
    }
    const auto& tasks = keptList_.list->tasks;
    return !since || (*since >= *keptList_.since &&
                      std::all_of(tasks.begin(), tasks.end(), [&](const ORVTaskView& task) {
                          return task.changedAt >= *since;
                      }));
}

/// Remembers what was read, and returns whether that is all: a task that could not be read is tried
/// again at the next list.
bool ORVTaskViewer::keep(const ORVTaskListView& list, const std::vector<ORVListedTask>& tasks) {
    bool isWhole = true;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        const ORVTaskView& row = list.tasks[i];
        isWhole = isWhole && row.snapshot;
        if (row.snapshot) {
            kept_[tasks[i].task.threadID] = {row, tasks[i].filesRevision};
        }
    }
    return isWhole;
}

ORVTaskView ORVTaskViewer::viewOfListed(const ORVListedTask& listed) {
    ORVTaskView view = viewOfTask(listed.task);
    placeInFamily(view, listed);
    return view;
}

ORVTaskView ORVTaskViewer::viewOfTask(const ORVTask& task) {
    ORVTaskView view;
    try {
        view.snapshot = sessions_.snapshotForTask(task, &view.error);
        if (wants_.agent && view.snapshot) {
            view.agent = sessions_.agentFactsForThreadID(task.threadID);
        }
        if (wants_.eventsPerFile > 0 && view.snapshot) {
            view.history = sessions_.historyForThreadID(task.threadID);
        }
    } catch (const std::bad_alloc&) {
        view = {.error = platform::posixError(ENOMEM)};
    }
    view.absence = view.snapshot ? ORVAbsence::none : ORVAbsence::unreadable;
    return view;
}

void ORVTaskViewer::placeInFamily(ORVTaskView& view, const ORVListedTask& listed) {
    view.threadID = listed.task.threadID;
    view.changedAt = listed.changedAt;
    view.folder = listed.firstLine.folder;
    view.isHelper = listed.followsHead;
    view.parentID = listed.firstLine.parentID;
    view.helperName = listed.firstLine.helperName;
    view.helpers = listed.helpers;
    if (wants_.shortID) {
        view.shortID = tasks_.shortIdentifier(listed.task);
    }
}

std::optional<ORVAccountLimits> ORVTaskViewer::accountLimits() {
    if (!tasks_.refresh(nullptr)) {
        return std::nullopt;
    }
    unreadableForLimits_.clear();
    return sessions_.accountLimits(allFiles(), &unreadableForLimits_);
}

std::vector<ORVUnreadable> ORVTaskViewer::unreadable() const {
    std::vector<ORVUnreadable> all = tasks_.unreadable();
    all.insert(all.end(), unreadableForLimits_.begin(), unreadableForLimits_.end());
    return all;
}
