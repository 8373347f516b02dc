// Lists of tasks: which tasks they hold, and reading those that have changed.
// Tests: tests/app/task_viewer_test.cpp.

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <new>
#include <tuple>
#include <utility>

#include "app/ORVTaskViewer.h"

namespace {

/// So many tasks are read before the memory for them is freed.
constexpr std::size_t kBatch = 256;

/// Returns the date so long before this moment.
ORVFileDate before(ORVClock::TimePoint now, std::chrono::seconds age) {
    // In seconds: nanoseconds would overflow for a long time.
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now.time_since_epoch()) - age;
    return {seconds.count(), 0};
}

}  // namespace

std::vector<ORVListedTask> ORVTaskViewer::listed(const ORVListRequest& request) {
    ORVTaskList::Wanted wanted;
    wanted.limit = request.limit;
    wanted.folder = request.folder;
    using Helpers = ORVTaskList::Wanted::Helpers;
    wanted.helpers = request.showsHelpers    ? Helpers::listed
                     : request.countsHelpers ? Helpers::counted
                                             : Helpers::none;
    if (request.since) {
        wanted.changedSince = before(clock_.now(), *request.since);
    }
    std::vector<ORVListedTask> tasks;
    for (ORVListedTask& head : tasks_.heads(wanted)) {
        std::vector<ORVListedTask> helpers = std::move(head.helperTasks);
        tasks.push_back(std::move(head));
        std::move(helpers.begin(), helpers.end(), std::back_inserter(tasks));
    }
    return tasks;
}

std::shared_ptr<const ORVTaskListView> ORVTaskViewer::list(const ORVListRequest& request,
                                                           Memory memory,
                                                           const Progress& progress) {
    auto result = std::make_shared<ORVTaskListView>();
    ORVTaskListView& view = *result;
    view.hasSessionsFolder = tasks_.refresh(nullptr);
    sessions_.refreshTitleIndexIfNeeded();
    if (keptTitlesDate_ != sessions_.titleIndexDate()) {
        keptTitlesDate_ = sessions_.titleIndexDate();
        kept_.clear();
        keptList_ = {};
    }
    if (keptList_.list && keptList_.request == request && !request.since &&
        keptList_.revision == tasks_.revision()) {
        return keptList_.list;
    }
    const std::vector<ORVListedTask> tasks = listed(request);
    std::unordered_map<std::string, KeptView> kept = std::exchange(kept_, {});
    std::vector<std::size_t> unread;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        ORVTaskView& row = view.tasks.emplace_back();
        const auto found = kept.find(tasks[i].task.threadID);
        const bool isKnown = found != kept.end() && found->second.files == tasks[i].task.files;
        if (isKnown) {
            row = std::move(found->second.view);
        } else {
            unread.push_back(i);
            row.isRead = false;
        }
        placeInFamily(row, tasks[i]);
    }
    const std::size_t most = request.readAtOnce > 0 ? request.readAtOnce : unread.size();
    view.isComplete = unread.size() <= most;
    unread.resize(std::min(unread.size(), most));
    readTasks(view.tasks, tasks, unread, memory, progress);
    if (memory == Memory::kept) {
        keep(result, tasks, request);
    }
    return result;
}

/// Remembers what was read. A task that could not be read is tried again at the next list.
void ORVTaskViewer::keep(const std::shared_ptr<const ORVTaskListView>& list,
                         const std::vector<ORVListedTask>& tasks, const ORVListRequest& request) {
    bool isWhole = true;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        const ORVTaskView& row = list->tasks[i];
        isWhole = isWhole && row.snapshot;
        if (row.snapshot) {
            kept_[tasks[i].task.threadID] = {row, tasks[i].task.files};
        }
    }
    keptList_ = {isWhole ? list : nullptr, request, tasks_.revision()};
}

/// Reads the tasks at these places of the list, on all processors.
void ORVTaskViewer::readTasks(std::vector<ORVTaskView>& views,
                              const std::vector<ORVListedTask>& tasks,
                              const std::vector<std::size_t>& places, Memory memory,
                              const Progress& progress) {
    for (std::size_t first = 0; first < places.size(); first += kBatch) {
        const std::size_t end = std::min(first + kBatch, places.size());
        std::vector<ORVTask> batch;
        for (std::size_t i = first; i < end; ++i) {
            batch.push_back(tasks[places[i]].task);
        }
        sessions_.readAhead(batch, [&](std::size_t done) {
            if (progress) {
                progress(first + done, places.size());
            }
        });
        for (std::size_t i = first; i < end; ++i) {
            views[places[i]] = viewOfListed(tasks[places[i]]);
        }
        if (memory == Memory::freed) {
            sessions_.forgetFiles();
        }
    }
}

ORVTaskView ORVTaskViewer::viewOfListed(const ORVListedTask& listed) {
    ORVTaskView view;
    try {
        view.snapshot = sessions_.snapshotForTask(listed.task, &view.error);
        if (wants_.agent && view.snapshot) {
            view.agent = sessions_.agentFactsForThreadID(listed.task.threadID);
        }
        if (wants_.eventsPerFile > 0 && view.snapshot) {
            view.history = sessions_.historyForThreadID(listed.task.threadID);
        }
    } catch (const std::bad_alloc&) {
        view = {.error = platform::posixError(ENOMEM)};
    }
    view.absence = view.snapshot ? ORVAbsence::none : ORVAbsence::unreadable;
    placeInFamily(view, listed);
    return view;
}

void ORVTaskViewer::placeInFamily(ORVTaskView& view, const ORVListedTask& listed) {
    view.threadID = listed.task.threadID;
    view.changedAt = listed.changedAt;
    view.folder = listed.firstLine.folder;
    view.isHelper = listed.firstLine.isHelper;
    view.parentID = listed.firstLine.parentID;
    view.helperName = listed.firstLine.helperName;
    view.helpers = listed.helpers;
    if (wants_.shortID) {
        view.shortID = tasks_.shortIdentifier(listed.task);
    }
}

std::optional<ORVAccountLimits> ORVTaskViewer::accountLimits() {
    constexpr std::size_t kMostFiles = 20;
    if (!tasks_.refresh(nullptr)) {
        return std::nullopt;
    }
    std::vector<ORVWalkedFile> files;
    tasks_.tree().forEachFile([&](const ORVWalkedFile& file) { files.push_back(file); });
    const std::size_t count = std::min(kMostFiles, files.size());
    std::partial_sort(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count),
                      files.end(), [](const ORVWalkedFile& a, const ORVWalkedFile& b) {
                          return std::tie(b.modifiedAt, a.path) < std::tie(a.modifiedAt, b.path);
                      });
    files.resize(count);
    unreadableForLimits_.clear();
    return sessions_.accountLimits(files, &unreadableForLimits_);
}

std::vector<ORVUnreadable> ORVTaskViewer::unreadable() const {
    std::vector<ORVUnreadable> all = tasks_.unreadable();
    all.insert(all.end(), unreadableForLimits_.begin(), unreadableForLimits_.end());
    return all;
}
