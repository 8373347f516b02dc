#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVFirstLines.h"
#include "sessions/ORVSessionTree.h"
#include "sessions/ORVTask.h"

/// A task as lists show it.
struct ORVListedTask {
    ORVTask task;
    ORVFirstLine firstLine;  ///< Of the newest file that counts: helper or not, folder, parent.
    /// When the task's newest file that counts was written; for the head of a family, when any of
    /// its family was.
    ORVFileDate changedAt;
    std::size_t helpers = 0;  ///< How many helpers the family has, where it was asked for.
    /// Whether the last refresh, which was not the first, met the task for the first time.
    bool isNew = false;
};

/// All tasks and their families, kept up to date.
///
/// The agent lets helpers work for a task, and their helpers for them. Going from parent to parent
/// leads to the head of the family: the last one that has a session file, in a circle the one with
/// the smallest identifier. A family changed when any of its tasks did.
///
/// A file whose first line is not complete yet, or cannot be read, counts for nothing in dates,
/// folders and families while any other one is complete, since a helper that has only begun would
/// be taken for a task. Only first lines that an answer needs are read.
///
/// Every answer is that of the last refresh; before the first there are no tasks. Equal dates are
/// ordered by path. One thread at a time uses the list; when memory runs out it forgets everything
/// and throws std::bad_alloc.
class ORVTaskList {
public:
    /// `sessionsFolder` is the folder below which all session files stand. `files` and `clock` must
    /// outlive the list.
    ORVTaskList(ORVFiles& files, const ORVClock& clock, std::string sessionsFolder);

    /// Looks for what has changed. Returns false, with an error, when the sessions folder cannot be
    /// read; there are no tasks then.
    bool refresh(ORVErrorSlot* error);

    /// A number that stays the same while no answer can have changed: whoever holds answers of the
    /// same revision need not ask again.
    std::uint64_t revision() const { return revision_; }

    /// Names the files whose growth the next refresh must notice, in place of those named before.
    /// Others that were not written lately are noticed within five refreshes.
    void lookAtEveryTime(std::set<std::string> paths);

    // Heads and helpers

    /// Which heads are wanted.
    struct Wanted {
        std::size_t limit = 0;                    ///< At most so many; 0 for all.
        std::optional<ORVFileDate> changedSince;  ///< Families changed then or later.
        /// An absolute path without links: heads whose folder is this one, lies above it or in it.
        std::optional<std::string> folder;
        bool countsHelpers = false;  ///< Reads all first lines.
    };

    /// Returns the heads, the one whose family changed last first.
    std::vector<ORVListedTask> heads(const Wanted& wanted);

    /// Returns the head of the family that changed last; none when there are no tasks. Opens no
    /// files but those of one family, and those whose first lines are not complete.
    std::optional<ORVListedTask> newestHead();

    /// Returns the head that works in the folder or in one that holds it: of several the one with
    /// the deepest folder, among equals the one whose family changed last. `folder` is an absolute
    /// path without links.
    std::optional<ORVListedTask> headForFolder(const std::string& folder);

    /// Returns the head of the family that the task with this identifier belongs to, letter case
    /// disregarded; none when there is no such task.
    std::optional<ORVListedTask> headOfFamily(std::string_view threadID);

    /// Returns all helpers of the head's family, the one that changed last first. Reads all first
    /// lines.
    std::vector<ORVListedTask> helpersOf(const ORVTask& head);

    // Identifiers

    /// Returns the tasks that a part of an identifier means, letter case disregarded, newest file
    /// first: those whose identifiers end with it or, where none does, those whose identifiers hold
    /// it.
    std::vector<ORVTask> matching(std::string_view part);

    /// Returns the shortest ending of the task's identifier, of at least six characters, that no
    /// other task's identifier has, letter case disregarded; for a task without an identifier the
    /// name of its file.
    std::string shortIdentifier(const ORVTask& task);

    // Beside the answers

    /// All session files.
    const ORVSessionTree& tree() const { return tree_; }

    /// Returns the folders and files that could not be read, by path: files among those whose first
    /// lines were wanted so far.
    std::vector<ORVUnreadable> unreadable() const;

private:
    ORVSessionTree tree_;
    ORVFirstLines firstLines_;
    std::uint64_t revision_ = 0;
};
