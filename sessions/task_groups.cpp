// Which tasks there are, from the names of the session files, and what their identifiers are. A
// name holds the identifier of its task; letter case does not tell tasks apart. Tests:
// tests/sessions/task_list_test.cpp, which compares the list with one made anew.

#include <cerrno>
#include <tuple>

#include "sessions/ORVTaskList.h"
#include "sessions/errors.h"
#include "text/bytes.h"
#include "text/identifiers.h"
#include "text/paths.h"
#include "text/unicode.h"

namespace {

constexpr std::size_t kShortestIdentifier = 6;

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), text::lowerCasedASCII);
    return lower;
}

/// Returns the keys of the file's groups: every identifier in its name, or its path.
std::vector<std::string> keysOf(const ORVWalkedFile& file) {
    const std::string_view name = text::lastPathComponent(file.path);
    std::vector<std::string> keys;
    for (std::size_t i = 0; i + text::kUUIDLength <= name.size(); ++i) {
        if (text::isUUID(name.substr(i, text::kUUIDLength))) {
            std::string key = lowerCased(name.substr(i, text::kUUIDLength));
            if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
                keys.push_back(std::move(key));
            }
        }
    }
    return keys.empty() ? std::vector{file.path} : keys;
}

bool isOlder(const ORVWalkedFile& a, const ORVWalkedFile& b) {
    return std::tie(a.modifiedAt, a.path) < std::tie(b.modifiedAt, b.path);
}

/// Returns the identifier in the letter case of the file's name; for a path, that name.
std::string spellingIn(const ORVWalkedFile& file, std::string_view identifier) {
    const std::string_view name = text::lastPathComponent(file.path);
    const auto found = std::search(name.begin(), name.end(), identifier.begin(), identifier.end(),
                                   [](char a, char b) { return text::lowerCasedASCII(a) == b; });
    return found == name.end() ? std::string(name) : std::string(found, found + identifier.size());
}

std::size_t commonEnding(std::string_view a, std::string_view b) {
    const auto ends = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend());
    return static_cast<std::size_t>(ends.first - a.rbegin());
}

bool endsWith(std::string_view identifier, std::string_view part) {
    return identifier.size() >= part.size() &&
           text::containsIgnoringCase(identifier.substr(identifier.size() - part.size()), part);
}

}  // namespace

bool ORVTaskList::ChangedLastFirst::operator()(const Group* a, const Group* b) const {
    return std::tie(b->changedAt, a->newest->path, a->identifier) <
           std::tie(a->changedAt, b->newest->path, b->identifier);
}

bool ORVTaskList::refresh(ORVErrorSlot* error) {
    return orForgetAll([&] {
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
        for (const ORVSessionTree::Change& change : tree_.changes()) {
            apply(change);
        }
        if (!tree_.changes().empty()) {
            ++revision_;
            if (std::exchange(allCount_, false)) {
                placeAll();
            }
        }
        lookAgainAtIncompleteFiles();
        return isRead;
    });
}

void ORVTaskList::apply(const ORVSessionTree::Change& change) {
    using Kind = ORVSessionTree::Change::Kind;
    const ORVWalkedFile* const file = change.file;
    bool isFirst = true;
    for (const std::string& key : keysOf(*file)) {
        const auto found = groups_.try_emplace(key).first;
        Group& group = found->second;
        group.identifier = found->first;
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
        place(group);
        if (group.files.empty()) {
            groups_.erase(found);
        }
    }
    if (change.kind == Kind::vanished) {
        incomplete_.erase(file);
        firstLines_.forget(file->path);
    }
}

/// Finds the task's newest file that counts, and the task's place in the order.
void ORVTaskList::place(Group& group) {
    const ORVWalkedFile* newest = nullptr;
    for (const ORVWalkedFile* file : group.files) {
        if (group.namesWithItFirst > 0 && (allCount_ || !incomplete_.contains(file)) &&
            (!newest || isOlder(*newest, *file))) {
            newest = file;
        }
    }
    // The order knows the task by its former newest file and date.
    auto place = group.newest ? order_.extract(&group) : Order::node_type();
    if (newest != group.newest || (group.known && group.known->isOfAnother(*newest))) {
        group.metAt = group.newest ? group.metAt : refreshes_;
        group.newest = newest;
        group.known = nullptr;
        ++familyRevision_;
    }
    if (newest) {
        group.changedAt = newest->modifiedAt;
        place.empty() ? void(order_.insert(&group)) : void(order_.insert(std::move(place)));
    }
}

void ORVTaskList::placeAll() {
    ++familyRevision_;
    for (auto& [identifier, group] : groups_) {
        place(group);
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
    return groups_.find(lowerCased(identifier));
}

ORVTaskList::Group* ORVTaskList::groupOf(const ORVTask& task) {
    auto found = groupNamed(task.threadID);
    if (found == groups_.end()) {
        found = groups_.find(task.newestFile().path);
    }
    return found == groups_.end() ? nullptr : &found->second;
}

ORVTask ORVTaskList::taskOf(const Group& group) {
    ORVTask task;
    for (const ORVWalkedFile* file : group.files) {
        task.files.push_back(*file);
    }
    std::sort(task.files.begin(), task.files.end(), isOlder);
    task.threadID = spellingIn(task.newestFile(), group.identifier);
    return task;
}

ORVListedTask ORVTaskList::listed(const Group& group, ORVFileDate changedAt) const {
    ORVListedTask task;
    task.task = taskOf(group);
    task.firstLine = group.known ? group.known->line : ORVFirstLine();
    task.changedAt = changedAt;
    task.isNew = refreshes_ > 1 && group.metAt == refreshes_;
    return task;
}

std::optional<ORVListedTask> ORVTaskList::taskWithIdentifier(std::string_view threadID) {
    return orForgetAll([&]() -> std::optional<ORVListedTask> {
        const auto found = groupNamed(threadID);
        if (found == groups_.end() || !settleFully(found->second)) {
            return std::nullopt;
        }
        return listed(found->second, found->second.changedAt);
    });
}

std::vector<ORVTask> ORVTaskList::matching(std::string_view part) {
    return orForgetAll([&] {
        std::vector<ORVTask> ending;
        std::vector<ORVTask> holding;
        for (const auto& [identifier, group] : groups_) {
            const std::string_view name = text::lastPathComponent(identifier);
            if (group.namesWithItFirst > 0 && text::containsIgnoringCase(name, part)) {
                (endsWith(name, part) ? ending : holding).push_back(taskOf(group));
            }
        }
        std::vector<ORVTask> tasks = std::move(ending.empty() ? holding : ending);
        std::sort(tasks.begin(), tasks.end(), [](const ORVTask& a, const ORVTask& b) {
            return std::tie(b.newestFile().modifiedAt, a.newestFile().path) <
                   std::tie(a.newestFile().modifiedAt, b.newestFile().path);
        });
        return tasks;
    });
}

/// Only a neighbour can have the longest ending in common with an identifier.
void ORVTaskList::measureIdentifiers() {
    Group* last = nullptr;
    for (auto& [identifier, group] : groups_) {
        if (group.namesWithItFirst == 0) {
            continue;
        }
        const std::size_t common = last ? commonEnding(last->identifier, identifier) : 0;
        group.shortLength = std::max(kShortestIdentifier, common + 1);
        if (last) {
            last->shortLength = std::max(last->shortLength, common + 1);
        }
        last = &group;
    }
    identifiersAreMeasured_ = true;
}

std::string ORVTaskList::shortIdentifier(const ORVTask& task) {
    if (!identifiersAreMeasured_) {
        measureIdentifiers();
    }
    const Group* group = groupOf(task);
    const std::size_t length = task.threadID.size();
    const bool isWhole = !group || !text::isUUID(task.threadID) || group->shortLength > length;
    return task.threadID.substr(isWhole ? 0 : length - group->shortLength);
}

std::vector<ORVUnreadable> ORVTaskList::unreadable() const {
    std::vector<ORVUnreadable> all = tree_.unreadable();
    for (const ORVWalkedFile* file : incomplete_) {
        const ORVFirstLines::Known* known = firstLines_.knownOf(file->path);
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
    ++revision_;
}
