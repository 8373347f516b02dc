#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVFirstLines.h"
#include "sessions/ORVSessionTree.h"

/// A task as lists show it.
struct ORVListedTask {
    ORVTask task;
    ORVFirstLine firstLine;  ///< Of the newest file that counts: helper or not, folder, parent.
    /// When the task's newest file that counts was written; for the head of a family, when any of
    /// its family was.
    ORVFileDate changedAt;
    std::size_t helpers = 0;   ///< How many helpers a head's family has, where it was asked for.
    bool followsHead = false;  ///< Whether it is one of the helpers that follow their head.
    /// The list's revision with which one of the task's files appeared, changed or vanished last.
    std::uint64_t filesRevision = 0;
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
    ORVTaskList(ORVFiles& files, const ORVClock& clock, std::string sessionsFolder)
        : files_(files), tree_(files, clock, std::move(sessionsFolder)), firstLines_(files) {}

    /// Looks for what has changed. Returns false, with an error, when the sessions folder cannot be
    /// read; there are no tasks then.
    bool refresh(ORVErrorSlot* error);

    /// A number that stays the same while no answer can have changed: whoever holds answers of the
    /// same revision need not ask again.
    std::uint64_t revision() const { return revision_; }

    /// Lets every refresh notice the growth of this task, in place of the one before, and from the
    /// second refresh on that of its helpers, as far as their first lines are known. That of others
    /// which were not written lately is noticed as ORVSessionTree says.
    void follow(const ORVTask& task);

    // Heads and helpers (families.cpp)

    /// Which heads are wanted.
    struct Wanted {
        std::size_t limit = 0;                         ///< At most so many; 0 for all.
        std::optional<ORVFileDate> changedSince = {};  ///< Families changed then or later.
        /// An absolute path without links: heads whose folder is this one, lies above it or in it.
        std::optional<std::string> folder = {};
        enum class Helpers { none, counted, listed };
        Helpers helpers = Helpers::none;  ///< All others need all first lines.
    };

    /// Returns the heads, the one whose family changed last first, and each followed by its
    /// helpers, if they are to be listed: the one that changed last first.
    std::vector<ORVListedTask> heads(const Wanted& wanted);

    /// Returns the head of the family that changed last; none when there are no tasks. Opens no
    /// files but those of one family, and those whose first lines are not complete.
    std::optional<ORVListedTask> newestHead();

    /// Returns the head that works in the folder or in one that holds it: of several the one with
    /// the deepest folder, among equals the one whose family changed last. `folder` is an absolute
    /// path without links.
    std::optional<ORVListedTask> headForFolder(const std::string& folder);

    /// Returns the head of the family of the task with this identifier, or, where no file's name
    /// holds it, with this file; none when there is no such task any more. Reads first lines until
    /// it meets the family's newest file.
    std::optional<ORVListedTask> headOfFamily(const std::string& threadID, const std::string& path);

    // Identifiers (identifiers.cpp)

    /// Returns the task with this whole identifier, letter case disregarded, or, where no file's
    /// name holds it, the file with this path; with its own date. None when there is no such task.
    std::optional<ORVListedTask> taskWithIdentifier(std::string_view threadID,
                                                    const std::string& path = {});

    /// Returns the tasks that a part of an identifier means, letter case disregarded, newest file
    /// first: those whose identifiers end with it or, where none does, those whose identifiers hold
    /// it. The empty part means all tasks. Reads no first line.
    std::vector<ORVTask> matching(std::string_view part);

    /// Returns the shortest ending of the task's identifier, of at least six characters, that no
    /// other task's identifier has, letter case disregarded; for a task without an identifier the
    /// name of its file.
    std::string shortIdentifier(const ORVTask& task);

    // Beside the answers

    /// All session files.
    const ORVSessionTree& tree() const { return tree_; }

    /// Their first lines, as far as they were wanted. Whoever reads whole files puts in theirs.
    ORVFirstLines& firstLines() { return firstLines_; }

    /// Returns the folders and files that could not be read, by path: files among those whose first
    /// lines were wanted so far.
    std::vector<ORVUnreadable> unreadable() const;

private:
    /// The files whose names hold an identifier. They are a task when at least one name holds it
    /// first: a task that was taken back to an earlier point goes on in a file whose name holds a
    /// second identifier after that of the task.
    struct Group {
        std::string_view identifier;  ///< The key in `groups_`.
        std::vector<const ORVWalkedFile*> files;
        std::size_t namesWithItFirst = 0;
        const ORVWalkedFile* newest = nullptr;  ///< Of the files that count; null when none does.
        ORVFileDate changedAt;                  ///< Of that file.
        const ORVFirstLines::Known* known = nullptr;  ///< Of that file; null until it is wanted.
        std::uint64_t filesRevision = 0;
        std::uint64_t metAt = 0;      ///< The number of the refresh since which some file counts.
        std::size_t shortLength = 0;  ///< Of the identifier's ending that no other task has.

        // What headOf knows, and when it was found.
        Group* head = nullptr;
        std::uint64_t headRevision = 0;
        std::uint64_t way = 0;

        // In which list a task of its family was met last, and its place there if it has one.
        std::uint64_t metInList = 0;
        std::optional<std::size_t> place;
    };

    /// The head that a question meant, and when.
    struct FoundHead {
        std::string question;
        std::uint64_t revision = 0;
        const Group* head = nullptr;
        ORVFileDate changedAt = {};  ///< That of its family.
    };

    struct ChangedLastFirst {
        bool operator()(const Group* a, const Group* b) const;
    };
    using Groups = std::unordered_map<std::string, Group>;
    using Order = std::set<Group*, ChangedLastFirst>;

    /// Brings the tasks up to date and does the work.
    template <typename Work>
    auto answer(Work work) {
        try {
            applyChanges();
            return work();
        } catch (const std::bad_alloc&) {
            forgetAll();
            throw;
        }
    }

    // Tasks (task_groups.cpp)
    void applyChanges();
    void apply(const ORVSessionTree::Change& change, bool places);
    void findNewest(Group& group);
    void place(Group& group);
    void placeAll();
    void placeTasksOf(const ORVWalkedFile& file);
    void lookAgainAtIncompleteFiles();
    std::optional<ORVListedTask> headOfNewestFile();
    Groups::iterator groupNamed(std::string_view identifier);
    Group* groupOf(std::string_view threadID, const std::string& path);
    Group* groupOf(const ORVTask& task) { return groupOf(task.threadID, task.newestFile().path); }
    static ORVTask taskOf(const Group& group);
    void forgetAll();
    ORVListedTask listed(const Group& group, ORVFileDate changedAt) const;

    // Identifiers (identifiers.cpp)
    void measureIdentifiers();

    // Families (families.cpp)
    const ORVFirstLines::Known& readFirstLine(const ORVWalkedFile& file);
    bool settle(Group& group);
    bool settleFully(Group& group);
    bool settleTies(Order::iterator first);
    void readFirstLinesAhead();
    Group* parentOf(const Group& group);
    Group& headOf(Group& group);
    template <typename Visit>
    void visitTasks(Visit visit);
    template <typename Find>
    std::optional<ORVListedTask> foundHead(FoundHead& found, const std::string& question,
                                           Find find);

    ORVFiles& files_;
    ORVSessionTree tree_;
    ORVFirstLines firstLines_;
    std::set<std::string> namedPaths_;
    std::string followedID_;
    std::uint64_t followedRevision_ = 0;  ///< When the helpers of that task were looked for.
    std::uint64_t revision_ = 0;
    std::uint64_t refreshes_ = 0;

    /// By identifier in lower case, or by the path of a file whose name holds none.
    Groups groups_;
    Order order_;  ///< The tasks with files that count, as far as first lines are known.
    std::set<const ORVWalkedFile*> incomplete_;  ///< First lines not complete, or not to be read.
    bool allCount_ = false;  ///< Whether no first line is complete, so that every file counts.

    std::uint64_t familyRevision_ = 0;  ///< Changes whenever a head may have become another one.
    std::uint64_t lastWay_ = 0;         ///< The number of the last way from parent to parent.
    std::uint64_t lastList_ = 0;        ///< The number of the last list of heads.
    FoundHead headForFolder_;
    FoundHead headOfFamily_;
    bool identifiersAreMeasured_ = false;
    bool changesWait_ = false;  ///< Whether the tasks do not know yet what the tree noticed.
};
