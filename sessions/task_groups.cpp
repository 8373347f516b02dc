// Which tasks there are, from the names of the session files. A name holds the identifier of its
// task; letter case does not tell tasks apart. Tests: tests/sessions/task_list_test.cpp, which
// compares the list with one made anew.

#include <algorithm>
#include <cerrno>
#include <tuple>

#include "sessions/ORVSessionSearch.h"
#include "sessions/ORVTaskList.h"
#include "text/bytes.h"

namespace {

/// Returns the keys of the file's groups: every identifier in its name, or its path.
std::vector<std::string> keysOf(const ORVWalkedFile& file) {
    const std::string_view name = text::lastPathComponent(file.path);
    std::vector<std::string> keys;
    std::string_view found = text::findUUID(name);
    while (!found.empty()) {
        std::string key = text::lowerCasedASCII(found);
        if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
            keys.push_back(std::move(key));
        }
        found = text::findUUID(name, static_cast<std::size_t>(found.data() - name.data()) + 1);
    }
    return keys.empty() ? std::vector{file.path} : keys;
}

bool isOlder(const ORVWalkedFile& a, const ORVWalkedFile& b) {
    return std::tie(a.modifiedAt, a.path) < std::tie(b.modifiedAt, b.path);
}

/// Returns where a name holds the identifier, which is in lower case.
std::string_view::iterator find(std::string_view name, std::string_view identifier) {
    return std::search(name.begin(), name.end(), identifier.begin(), identifier.end(),
                       [](char a, char b) { return text::lowerCasedASCII(a) == b; });
}

/// Returns the identifier in the letter case of the file's name; for a path, that name.
std::string spellingIn(const ORVWalkedFile& file, std::string_view identifier) {
    const std::string_view name = text::lastPathComponent(file.path);
    const auto found = find(name, identifier);
    return found == name.end() ? std::string(name) : std::string(found, found + identifier.size());
}

}  // namespace

bool ORVTaskList::ChangedLastFirst::operator()(const Group* a, const Group* b) const {
    return std::tie(b->changedAt, a->newest->path, a->identifier) <
           std::tie(a->changedAt, b->newest->path, b->identifier);
}

bool ORVTaskList::refresh(ORVErrorSlot* error) {
    return answer([&] {
        ++refreshes_;
        std::set<std::string> paths = namedPaths_;
        for (const ORVWalkedFile* file : incomplete_) {
            paths.insert(file->path);
        }
        tree_.lookAtEveryTime(std::move(paths));
        const bool isRead = tree_.refresh(nullptr);
        if (!isRead) {
            storeError(error, sessions::sessionsDirectoryMissing());
        }
        changesWait_ = !tree_.changes().empty();
        revision_ += changesWait_ ? 1 : 0;
        if (!incomplete_.empty()) {
            applyChanges();
            lookAgainAtIncompleteFiles();
        }
        return isRead;
    });
}

/// To place every task anew costs less than to place very many in turn.
void ORVTaskList::applyChanges() {
    if (!std::exchange(changesWait_, false)) {
        return;
    }
    constexpr std::size_t kShareOfAll = 8;
    const auto& changes = tree_.changes();
    const bool placesAll = changes.size() > groups_.size() / kShareOfAll || allCount_;
    if (placesAll) {
        order_.clear();
        groups_.reserve(tree_.fileCount());
    }
    for (const ORVSessionTree::Change& change : changes) {
        apply(change, !placesAll);
    }
    allCount_ = false;
    if (placesAll) {
        placeAll();
    }
}

void ORVTaskList::apply(const ORVSessionTree::Change& change, bool places) {
    using Kind = ORVSessionTree::Change::Kind;
    const ORVWalkedFile* const file = change.file;
    bool isFirst = true;
    for (std::string& key : keysOf(*file)) {
        const auto found = groups_.try_emplace(std::move(key)).first;
        Group& group = found->second;
        group.identifier = found->first;
        group.filesRevision = revision_;
        if (change.kind == Kind::appeared) {
            group.files.push_back(file);
            group.namesWithItFirst += isFirst ? 1 : 0;
            identifiersAreMeasured_ = false;
        } else if (change.kind == Kind::vanished) {
            std::erase(group.files, file);
            group.namesWithItFirst -= isFirst ? 1 : 0;
            identifiersAreMeasured_ = false;
        }
        isFirst = false;
        if (places) {
            place(group);
        }
        if (group.files.empty()) {
            groups_.erase(found);
        }
    }
    if (change.kind == Kind::vanished) {
        incomplete_.erase(file);
        firstLines_.forget(*file);
    }
}

/// Finds the task's newest file that counts.
void ORVTaskList::findNewest(Group& group) {
    const ORVWalkedFile* newest = nullptr;
    for (const ORVWalkedFile* file : group.files) {
        if (group.namesWithItFirst > 0 && (allCount_ || !incomplete_.contains(file)) &&
            (!newest || isOlder(*newest, *file))) {
            newest = file;
        }
    }
    if (newest != group.newest || (group.known && group.known->isOfAnother(*newest))) {
        group.metAt = group.newest ? group.metAt : refreshes_;
        group.newest = newest;
        group.known = nullptr;
        ++familyRevision_;
    }
    group.changedAt = newest ? newest->modifiedAt : ORVFileDate();
}

void ORVTaskList::place(Group& group) {
    // The order knows the task by its former newest file and date.
    auto place = group.newest ? order_.extract(&group) : Order::node_type();
    findNewest(group);
    if (group.newest) {
        place.empty() ? void(order_.insert(&group)) : void(order_.insert(std::move(place)));
    }
}

void ORVTaskList::placeAll() {
    ++familyRevision_;
    order_.clear();
    std::vector<Group*> tasks;
    for (auto& [identifier, group] : groups_) {
        findNewest(group);
        if (group.newest) {
            tasks.push_back(&group);
        }
    }
    std::sort(tasks.begin(), tasks.end(), ChangedLastFirst());
    for (Group* group : tasks) {
        order_.insert(order_.end(), group);
    }
}

void ORVTaskList::placeTasksOf(const ORVWalkedFile& file) {
    for (const std::string& key : keysOf(file)) {
        place(groups_.find(key)->second);
    }
}

void ORVTaskList::lookAgainAtIncompleteFiles() {
    bool isAnyComplete = false;
    for (auto at = incomplete_.begin(); at != incomplete_.end();) {
        const ORVWalkedFile& file = **at;
        if (firstLines_.tryAgain(file).line.isComplete) {
            isAnyComplete = true;
            at = incomplete_.erase(at);
            placeTasksOf(file);
        } else {
            ++at;
        }
    }
    if (isAnyComplete) {
        ++revision_;
        if (std::exchange(allCount_, false)) {
            placeAll();
        }
    }
}

ORVTaskList::Groups::iterator ORVTaskList::groupNamed(std::string_view identifier) {
    return groups_.find(text::lowerCasedASCII(identifier));
}

ORVTaskList::Group* ORVTaskList::groupOf(std::string_view threadID, const std::string& path) {
    auto found = groupNamed(threadID);
    if (found == groups_.end()) {
        found = groups_.find(path);
    }
    return found == groups_.end() ? nullptr : &found->second;
}

/// Returns the head of the newest file's family where that file alone tells it, as it does without
/// helpers: one file is newest, names one identifier, and is no helper's. To make all tasks for
/// this answer would be felt.
std::optional<ORVListedTask> ORVTaskList::headOfNewestFile() {
    Group group;
    bool isAlone = false;
    tree_.forEachFile([&](const ORVWalkedFile& file) {
        isAlone = group.newest && file.modifiedAt == group.newest->modifiedAt ? false : isAlone;
        if (!group.newest || file.modifiedAt > group.newest->modifiedAt) {
            group.newest = &file;
            isAlone = true;
        }
    });
    const auto keys = isAlone ? keysOf(*group.newest) : std::vector<std::string>();
    if (keys.size() != 1 || !text::isUUID(keys.front())) {
        return std::nullopt;
    }
    group.known = &firstLines_.ofFile(*group.newest);
    if (!group.known->line.isComplete || group.known->line.isHelper) {
        return std::nullopt;
    }
    group.identifier = keys.front();
    tree_.forEachFile([&](const ORVWalkedFile& file) {
        const std::string_view name = text::lastPathComponent(file.path);
        if (find(name, group.identifier) != name.end()) {
            group.files.push_back(&file);
        }
    });
    return listed(group, group.newest->modifiedAt);
}

ORVTask ORVTaskList::taskOf(const Group& group) {
    ORVTask task = {"", group.files};
    std::sort(task.files.begin(), task.files.end(),
              [](const auto* a, const auto* b) { return isOlder(*a, *b); });
    task.threadID = spellingIn(task.newestFile(), group.identifier);
    return task;
}

ORVListedTask ORVTaskList::listed(const Group& group, ORVFileDate changedAt) const {
    ORVListedTask task;
    task.task = taskOf(group);
    task.firstLine = group.known ? group.known->line : ORVFirstLine();
    task.changedAt = changedAt;
    task.filesRevision = group.filesRevision;
    task.isNew = refreshes_ > 1 && group.metAt == refreshes_;
    return task;
}

std::vector<ORVUnreadable> ORVTaskList::unreadable() const {
    std::vector<ORVUnreadable> all = tree_.unreadable();
    for (const ORVWalkedFile* file : incomplete_) {
        const ORVFirstLines::Known* known = firstLines_.knownOf(*file);
        if (known && known->error != 0 && known->error != ENOENT) {
            all.push_back({file->path, platform::posixError(known->error), false});
        }
    }
    std::sort(all.begin(), all.end(),
              [](const ORVUnreadable& a, const ORVUnreadable& b) { return a.path < b.path; });
    return all;
}

void ORVTaskList::forgetAll() {
    order_.clear();
    groups_.clear();
    incomplete_.clear();
    firstLines_.forgetAll();
    tree_.forgetAll();
    allCount_ = false;
    changesWait_ = false;
    ++revision_;
}
