#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/ORVTaskView.h"
#include "focus/ORVCodexFocusLogSource.h"
#include "sessions/ORVCodexSessionSource.h"
#include "sessions/ORVTaskList.h"

/// Answers every question about tasks, and is the only place that decides which task is meant. Its
/// sources keep their place in every file, so an answer reads only what is new.
///
/// One thread at a time uses it: in the application the refresh queue. Memory that runs out is an
/// answer with the error ENOMEM.
class ORVTaskViewer {
public:
    /// `files` and `clock` must outlive the viewer. `codexHome` is the folder that holds the
    /// sessions and their titles.
    ORVTaskViewer(ORVFiles& files, const ORVClock& clock, const std::string& codexHome,
                  ORVTaskWants wants);

    // One task (shown_task.cpp)

    /// Returns the task that is shown.
    ///
    /// The newest task, and the newest of a folder, is asked for again and again: then the one that
    /// was shown stays while its family was seen to change within the last ten seconds, so that two
    /// tasks at work do not take turns. A task that has just begun is shown at once.
    ORVTaskView view(const ORVShownTask& task);

    /// Shows identified tasks as this list, which must outlive the viewer, has found them, and lets
    /// it follow them. Otherwise the folders are searched for their files.
    void findTasksIn(ORVTaskList& list) { list_ = &list; }

    /// Returns why no task is shown when a part of an identifier means several; none when it means
    /// one or none.
    std::optional<ORVTaskView> severalMeantBy(const std::string& part);

    // Lists (task_list.cpp)

    /// Returns the tasks of a list, newest family first: the same list again while nothing in it
    /// can have changed, so that asking costs nothing.
    std::shared_ptr<const ORVTaskListView> list(const ORVListRequest& request);

    /// Returns the same for who asks once, and remembers nothing of the files that were read.
    /// `progress` is told how many of them have been, by any thread.
    using Progress = std::function<void(std::size_t done, std::size_t total)>;
    ORVTaskListView listOnce(const ORVListRequest& request, const Progress& progress);

    // Beside the answers

    /// Returns the folders and files that could not be read for the last answer.
    std::vector<ORVUnreadable> unreadable() const;

    /// Returns the files and folders that hold all that is read. Below a folder everything may be
    /// read; what may be a link that leads elsewhere is named by itself.
    std::vector<std::string> placesToRead() const;

    ORVCodexSessionSource& sessions() { return sessions_; }
    ORVCodexFocusLogSource& focus() { return focus_; }

    /// Returns how much of the account's rate limits is used; none when no session file tells it.
    std::optional<ORVAccountLimits> accountLimits();

    /// Returns the list of all tasks as of the last question that needed it.
    ORVTaskList& tasks() { return tasks_; }

private:
    // One task (shown_task.cpp)
    ORVTaskView viewOfTaskInView();
    ORVTaskView viewOfHead(const ORVShownTask& task);
    ORVTaskView viewOfGiven(const std::string& identifier);
    ORVTaskView viewOfIdentified(const std::string& threadID);
    ORVTaskView viewOfPart(const std::string& part);
    ORVTaskView severalTasks(const std::vector<ORVTask>& tasks);
    std::optional<ORVListedTask> headThatStays(std::optional<ORVListedTask> candidate);
    bool refreshTasks(ORVTaskView& view);
    void fill(ORVTaskView& view);

    // Lists (task_list.cpp)
    bool isKept(const ORVListRequest& request, const std::optional<ORVFileDate>& since) const;
    std::vector<ORVListedTask> listed(const ORVListRequest& request,
                                      const std::optional<ORVFileDate>& since);
    struct KeptView {
        ORVTaskView view;
        std::uint64_t filesRevision = 0;  ///< That the view came from.
    };
    using KeptViews = std::unordered_map<std::string, KeptView>;  ///< By identifier.
    ORVTaskListView beginList();
    std::optional<ORVFileDate> sinceOf(const ORVListRequest& request) const;
    std::vector<const ORVWalkedFile*> allFiles() const;
    void readEverything(const ORVListRequest& request, const Progress& progress);
    std::vector<std::size_t> placeTasks(std::vector<ORVTaskView>& rows,
                                        const std::vector<ORVListedTask>& tasks);
    bool keep(const ORVTaskListView& list, const std::vector<ORVListedTask>& tasks);
    ORVTaskView viewOfListed(const ORVListedTask& listed);
    ORVTaskView viewOfTask(const ORVTask& task);
    void placeInFamily(ORVTaskView& view, const ORVListedTask& listed);

    const ORVClock& clock_;
    const ORVTaskWants wants_;
    ORVCodexSessionSource sessions_;
    ORVCodexFocusLogSource focus_;
    ORVTaskList tasks_;
    ORVTaskList* list_ = nullptr;

    std::optional<ORVShownTask> lastTask_;
    std::vector<ORVUnreadable> unreadableForLimits_;

    /// The head that is shown by its newness, and when its family was last seen to change.
    struct Shown {
        std::string threadID;
        std::string path;  ///< Of its newest file.
        ORVFileDate changedAt;
        std::optional<ORVClock::TimePoint> sawChangeAt;
    };
    std::optional<Shown> shown_;

    /// The identifier that a part was found to mean.
    std::unordered_map<std::string, std::string> meanings_;

    bool hasListed_ = false;  ///< Whether the beginning of a list was shown.
    KeptViews kept_;          ///< The tasks of the last list that was kept.

    /// The last whole list that was kept, and what it rests on.
    struct KeptList {
        std::shared_ptr<const ORVTaskListView> list;
        ORVListRequest request;
        std::optional<ORVFileDate> since;  ///< The date that the request's age meant then.
        std::uint64_t revision = 0;
    };
    KeptList keptList_;
    std::optional<ORVFileDate> keptTitlesDate_;
};
