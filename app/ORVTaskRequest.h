#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

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
