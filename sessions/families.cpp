// Which tasks belong together: the agent lets helpers work for a task, and names the task in their
// first lines. Tests: tests/sessions/task_list_test.cpp.

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "sessions/ORVTaskList.h"
#include "text/bytes.h"

namespace {

/// How a working folder lies to one folder, by its path as written and by its path without links.
/// Each path is looked up once.
class Neighbourhood {
public:
    struct Relation {
        std::optional<std::size_t> depth;  ///< Of a path that is the folder or holds it.
        bool isNear = false;               ///< Whether one is the other or holds it.
    };

    Neighbourhood(ORVFiles& files, const std::string& folder) : files_(files), folder_(folder) {}

    const Relation& of(const std::string& path) {
        const auto [found, isNew] = relations_.try_emplace(path);
        Relation& relation = found->second;
        if (isNew) {
            relation = asWritten(path);
            if (const auto real = relation.depth ? std::nullopt : files_.realPath(path)) {
                const bool wasNear = relation.isNear;
                relation = asWritten(*real);
                relation.isNear = relation.isNear || wasNear;
            }
        }
        return relation;
    }

private:
    /// Returns the length of the holder's path when the folder is the holder itself or lies in it,
    /// else none. The root folder holds everything and has the length 0.
    static std::optional<std::size_t> depthOfHolder(std::string_view holder,
                                                    std::string_view folder) {
        while (holder.ends_with('/')) {
            holder.remove_suffix(1);
        }
        const bool holds =
            folder.starts_with(holder) &&
            (folder.size() == holder.size() || folder[holder.size()] == '/' || holder.empty());
        return holds ? std::optional(holder.size()) : std::nullopt;
    }

    Relation asWritten(std::string_view path) const {
        const auto depth = depthOfHolder(path, folder_);
        return {depth, depth || depthOfHolder(folder_, path)};
    }

    ORVFiles& files_;
    const std::string& folder_;
    std::unordered_map<std::string, Relation> relations_;
};

}  // namespace

const ORVFirstLines::Known& ORVTaskList::readFirstLine(const ORVWalkedFile& file) {
    const ORVFirstLines::Known& known = firstLines_.ofFile(file);
    if (!known.line.isComplete && incomplete_.insert(&file).second) {
        placeTasksOf(file);
    }
    return known;
}

/// Reads the first line of the task's newest file, and returns whether the task keeps its place:
/// with an incomplete line the file does not count.
bool ORVTaskList::settle(Group& group) {
    const ORVWalkedFile* const newest = group.newest;
    if (newest && !group.known) {
        const ORVFirstLines::Known& known = readFirstLine(*newest);
        if (group.newest == newest) {
            group.known = &known;
        }
    }
    return group.newest == newest;
}

/// Returns whether a file of the task counts in the end.
bool ORVTaskList::settleFully(Group& group) {
    while (!settle(group)) {
    }
    return group.newest != nullptr;
}

/// Settles the tasks of one date, the first of which is given, that may change places with each
/// other: a task without its newest file may stand before one of the same date. Returns false when
/// one has lost its place.
bool ORVTaskList::settleTies(Order::iterator first) {
    const ORVFileDate date = (*first)->changedAt;
    for (auto at = first; at != order_.end() && (*at)->changedAt == date; ++at) {
        if ((*at)->files.size() > 1 && !settle(**at)) {
            return false;
        }
    }
    return true;
}

/// Visits the tasks with files that count, the one that changed last first, until `visit` returns
/// false. First lines are read on the way, so that a task may go further back; it is visited there.
template <typename Visit>
void ORVTaskList::visitTasks(Visit visit) {
    auto last = order_.end();
    std::optional<ORVFileDate> settledDate;
    while (true) {
        const auto at = last == order_.end() ? order_.begin() : std::next(last);
        if (at == order_.end()) {
            if (last != order_.end() || allCount_ || incomplete_.empty()) {
                return;
            }
            allCount_ = true;
            placeAll();
        } else if (settledDate != (*at)->changedAt) {
            const ORVFileDate date = (*at)->changedAt;
            settledDate = settleTies(at) ? std::optional(date) : std::nullopt;
        } else if (settle(**at)) {
            if (!visit(**at)) {
                return;
            }
            last = at;
        }
    }
}

/// Where an answer needs all first lines, reads them on all processors.
void ORVTaskList::readFirstLinesAhead() {
    std::vector<const ORVWalkedFile*> unread;
    for (const Group* group : order_) {
        if (!group->known) {
            unread.push_back(group->newest);
        }
    }
    firstLines_.readAhead(unread);
}

/// Returns the task that a helper works for; null for what is no helper, and where there is no such
/// task.
ORVTaskList::Group* ORVTaskList::parentOf(const Group& group) {
    const auto& parentID = group.known->line.parentID;
    const auto parent = parentID ? groupNamed(*parentID) : groups_.end();
    if (parent == groups_.end()) {
        return nullptr;
    }
    return settleFully(parent->second) ? &parent->second : nullptr;
}

/// Goes from parent to parent, and remembers for each task on the way where it led. The task must
/// be settled.
ORVTaskList::Group& ORVTaskList::headOf(Group& group) {
    if (!group.known->line.parentID) {
        return group;
    }
    ++lastWay_;
    std::vector<Group*> way;
    Group* head = &group;
    for (Group* next = &group; next; next = parentOf(*next)) {
        head = next;
        if (next->headRevision == familyRevision_) {
            head = next->head;
            break;
        }
        if (next->way == lastWay_) {
            const auto circle = std::find(way.begin(), way.end(), next);
            head = *std::min_element(circle, way.end(), [](const Group* a, const Group* b) {
                return a->identifier < b->identifier;
            });
            break;
        }
        next->way = lastWay_;
        way.push_back(next);
    }
    for (Group* passed : way) {
        passed->head = head;
        passed->headRevision = familyRevision_;
    }
    return *head;
}

std::vector<ORVListedTask> ORVTaskList::heads(const Wanted& wanted) {
    return answer([&] {
        using Helpers = Wanted::Helpers;
        const bool wantsHelpers = wanted.helpers != Helpers::none;
        if (wanted.limit == 0 || wanted.folder || wantsHelpers) {
            readFirstLinesAhead();
        }
        const std::string folder = wanted.folder.value_or("");
        Neighbourhood neighbourhood(files_, folder);
        const auto isWanted = [&](const Group& head) {
            const auto& path = head.known->line.folder;
            return !wanted.folder || (path && neighbourhood.of(*path).isNear);
        };
        std::vector<ORVListedTask> heads;
        heads.reserve(wanted.limit > 0 ? std::min(wanted.limit, order_.size()) : order_.size());
        std::vector<std::pair<std::size_t, ORVListedTask>> helpers;  // With their heads' places.
        ++lastList_;
        visitTasks([&](Group& group) {
            const auto isFull = [&] { return wanted.limit > 0 && heads.size() == wanted.limit; };
            const bool isOld = wanted.changedSince && group.changedAt < *wanted.changedSince;
            Group& head = headOf(group);
            if (std::exchange(head.metInList, lastList_) != lastList_) {
                head.place.reset();
                if (!isFull() && !isOld && isWanted(head)) {
                    head.place = heads.size();
                    heads.push_back(listed(head, group.changedAt));
                }
            }
            if (wantsHelpers && head.place && &group != &head) {
                ++heads[*head.place].helpers;
                if (wanted.helpers == Helpers::listed) {
                    helpers.emplace_back(*head.place, listed(group, group.changedAt));
                    helpers.back().second.followsHead = true;
                }
            }
            return wantsHelpers || !(isFull() || isOld);
        });
        if (helpers.empty()) {
            return heads;
        }
        std::stable_sort(helpers.begin(), helpers.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<ORVListedTask> tasks;
        auto helper = helpers.begin();
        for (std::size_t place = 0; place < heads.size(); ++place) {
            tasks.push_back(std::move(heads[place]));
            for (; helper != helpers.end() && helper->first == place; ++helper) {
                tasks.push_back(std::move(helper->second));
            }
        }
        return tasks;
    });
}

std::optional<ORVListedTask> ORVTaskList::newestHead() {
    if (changesWait_ && groups_.empty()) {
        if (auto head = headOfNewestFile()) {
            return head;
        }
    }
    auto newest = heads({.limit = 1});
    return newest.empty() ? std::nullopt : std::optional(std::move(newest.front()));
}

/// Answers a question that is asked at every refresh, and looks for the head only when the answer
/// may have changed: to go through very many tasks would be felt.
template <typename Find>
std::optional<ORVListedTask> ORVTaskList::foundHead(FoundHead& found, const std::string& question,
                                                    Find find) {
    return answer([&] {
        if (found.revision != revision_ || found.question != question) {
            found = {question, revision_};
            find();
        }
        return found.head ? std::optional(listed(*found.head, found.changedAt)) : std::nullopt;
    });
}

std::optional<ORVListedTask> ORVTaskList::headForFolder(const std::string& folder) {
    return foundHead(headForFolder_, folder, [&] {
        readFirstLinesAhead();
        Neighbourhood neighbourhood(files_, folder);
        std::optional<std::size_t> bestDepth;
        visitTasks([&](Group& group) {
            const Group& head = headOf(group);
            const auto& path = head.known->line.folder;
            const auto depth = path ? neighbourhood.of(*path).depth : std::nullopt;
            // Families come in the order of their changes, so of equal depths the first one stays.
            if (depth && (!bestDepth || *depth > *bestDepth)) {
                bestDepth = depth;
                headForFolder_.head = &head;
                headForFolder_.changedAt = group.changedAt;
            }
            return true;
        });
    });
}

std::optional<ORVListedTask> ORVTaskList::headOfFamily(const std::string& threadID,
                                                       const std::string& path) {
    return foundHead(headOfFamily_, threadID + '/' + path, [&] {
        Group* const member = groupOf(threadID, path);
        const Group* head = nullptr;
        visitTasks([&](Group& group) {
            if (!head) {
                head = member && settleFully(*member) ? &headOf(*member) : nullptr;
            }
            if (head == &headOf(group)) {
                headOfFamily_.head = head;
                headOfFamily_.changedAt = group.changedAt;
            }
            return head && !headOfFamily_.head;
        });
    });
}

void ORVTaskList::follow(const ORVTask& task) {
    if (followedID_ == task.threadID && followedRevision_ == revision_) {
        return;
    }
    namedPaths_.clear();
    for (const ORVWalkedFile* file : task.files) {
        namedPaths_.insert(file->path);
    }
    if (refreshes_ < 2) {
        return;  // Whoever asks once follows nothing.
    }
    answer([&] {
        followedID_ = task.threadID;
        followedRevision_ = revision_;
        const Group* const followed = groupOf(task);
        for (auto& [identifier, group] : groups_) {
            if (group.known && &headOf(group) == followed) {
                for (const ORVWalkedFile* file : group.files) {
                    namedPaths_.insert(file->path);
                }
            }
        }
    });
}
