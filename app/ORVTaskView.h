#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "focus/ORVCodexFocusState.h"
#include "sessions/ORVAgentFacts.h"
#include "sessions/ORVSessionSnapshot.h"
#include "sessions/ORVSessionTree.h"

/// Which task is shown.
struct ORVShownTask {
    enum class Choice {
        inView,      ///< The task that the desktop application has in view.
        latest,      ///< The head of the family that changed last.
        identified,  ///< The task whose identifier, or a part of it, is in `value`.
        inFolder,    ///< The head that works in the folder whose real path is in `value`.
        none,
    };

    Choice choice = Choice::inView;
    std::string value;
    bool operator==(const ORVShownTask&) const = default;
};

/// What is wanted of every task beside its figures. Nothing that is not wanted costs anything.
struct ORVTaskWants {
    bool folder = false;            ///< Where it works.
    bool agent = false;             ///< What the agent says beside the usage: model, limits.
    bool shortID = false;           ///< The end of its identifier that no other task has.
    bool advice = false;            ///< Whether there are session files, where no task is in view.
    std::size_t eventsPerFile = 0;  ///< The longest history of a file; 0 for no history.
};

/// Which tasks a list shows.
struct ORVListRequest {
    std::size_t limit = 20;                          ///< The most heads of families; 0 for all.
    std::optional<std::chrono::seconds> since = {};  ///< Families that changed within this time.
    std::optional<std::string> folder = {};          ///< A real path: heads in, above or below it.
    bool showsHelpers = false;                       ///< Each head is followed by its helpers.
    bool countsHelpers = false;  ///< Reads the first lines of all session files.
    /// The most tasks that one call reads; 0 for no limit. With a limit, the first list has no more
    /// tasks than these, and no helpers.
    std::size_t readAtOnce = 0;
    bool operator==(const ORVListRequest&) const = default;
};

/// What an application's surface wants to know at every refresh.
struct ORVRefreshRequest {
    ORVShownTask task;
    ORVTaskWants wants;
    std::optional<ORVListRequest> list;  ///< None for a surface that shows one task only.
    ORVTaskWants listWants;              ///< Of every task of the list.
};

/// Why no task is shown.
enum class ORVAbsence {
    none,              ///< A task is shown.
    notInView,         ///< The focus state says why.
    noSessionsFolder,  ///< It does not exist, or may not be read.
    noSessionFile,
    noSuchTask,
    severalTasks,  ///< A part of an identifier that means several tasks.
    noTaskInFolder,
    unreadable,  ///< A file of the task cannot be read; the error says why.
};

/// One of several tasks that a part of an identifier means.
struct ORVTaskChoice {
    std::string shortID;
    std::string title;
    ORVFileDate changedAt;
};

/// Everything that was found out about one task: the answer to every question about it, of which
/// each writer shows its part. A view does not change; it is made on the thread that reads.
struct ORVTaskView {
    std::optional<ORVSessionSnapshot> snapshot = {};  ///< The figures; none says `absence` why.
    ORVErrorSlot error = {};                          ///< May stand beside a snapshot.
    ORVAbsence absence = ORVAbsence::none;
    /// Null unless the task in view was asked for.
    std::shared_ptr<const ORVCodexFocusState> focusState = {};

    bool hasSessionFiles = false;  ///< Where no task is in view and it was wanted.

    std::vector<ORVTaskChoice> choices = {};  ///< The newest of several tasks.
    std::size_t choiceCount = 0;

    // What was wanted beside the figures.
    std::optional<std::string> folder = {};
    std::shared_ptr<const ORVAgentFacts> agent = {};  ///< Null without a snapshot, too.
    std::string shortID = {};
    std::shared_ptr<const ORVHistory> history =
        {};  ///< Null where there is none, or none was wanted.

    // The place in its family.
    std::string threadID = {};   ///< Also where there is no snapshot.
    ORVFileDate changedAt = {};  ///< For the head of a family, when any of its family was.
    bool isHelper = false;       ///< Whether it is listed after the head of its family.
    std::optional<std::string> parentID = {};    ///< As recorded; of a head when it has no file.
    std::optional<std::string> helperName = {};  ///< The name that the agent gave it.
    std::size_t helpers = 0;                     ///< Of a head, where they were counted.
    bool isRead = true;  ///< Whether the figures were looked for; a later view has them.

    /// Returns the usage that may be shown; null while there is none.
    const ORVContextUsage* usage() const;
    std::optional<double> percentage() const;

    /// Returns the focus status whose text tells people why no task is shown.
    ORVCodexFocusStatus focusStatus() const;
};

/// A list of tasks.
struct ORVTaskListView {
    std::vector<ORVTaskView> tasks;
    bool hasSessionsFolder = true;
    bool mayHaveFiles = true;  ///< Also while what may hold session files cannot be read.
    bool isComplete = true;    ///< Whether all of them have been read.
};
