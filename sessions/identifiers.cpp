// How people name a task: by a part of its identifier, of which the end tells it from the others.
// Tests: tests/sessions/task_list_test.cpp.

#include <algorithm>
#include <tuple>

#include "sessions/ORVTaskList.h"
#include "text/bytes.h"
#include "text/unicode.h"

namespace {

constexpr std::size_t kShortestIdentifier = 6;

std::size_t commonEnding(std::string_view a, std::string_view b) {
    const auto ends = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend());
    return static_cast<std::size_t>(ends.first - a.rbegin());
}

bool endsWith(std::string_view identifier, std::string_view part) {
    return identifier.size() >= part.size() &&
           text::containsIgnoringCase(identifier.substr(identifier.size() - part.size()), part);
}

}  // namespace

std::optional<ORVListedTask> ORVTaskList::taskWithIdentifier(std::string_view threadID,
                                                             const std::string& path) {
    return answer([&]() -> std::optional<ORVListedTask> {
        Group* const group = groupOf(threadID, path);
        if (!group || !settleFully(*group)) {
            return std::nullopt;
        }
        return listed(*group, group->changedAt);
    });
}

std::vector<ORVTask> ORVTaskList::matching(std::string_view part) {
    return answer([&] {
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
            const ORVWalkedFile& ofA = a.newestFile();
            const ORVWalkedFile& ofB = b.newestFile();
            return std::tie(ofB.modifiedAt, ofA.path, a.threadID) <
                   std::tie(ofA.modifiedAt, ofB.path, b.threadID);
        });
        return tasks;
    });
}

/// In the order of the identifiers read backwards, the longest ending in common with any other is
/// one in common with a neighbour.
void ORVTaskList::measureIdentifiers() {
    std::vector<Group*> tasks;
    for (auto& [identifier, group] : groups_) {
        if (group.namesWithItFirst > 0) {
            tasks.push_back(&group);
        }
    }
    std::sort(tasks.begin(), tasks.end(), [](const Group* a, const Group* b) {
        return std::lexicographical_compare(a->identifier.rbegin(), a->identifier.rend(),
                                            b->identifier.rbegin(), b->identifier.rend());
    });
    Group* last = nullptr;
    for (Group* group : tasks) {
        const std::size_t length =
            last ? commonEnding(last->identifier, group->identifier) + 1 : kShortestIdentifier;
        group->shortLength = std::max(kShortestIdentifier, length);
        if (last) {
            last->shortLength = std::max(last->shortLength, length);
        }
        last = group;
    }
    identifiersAreMeasured_ = true;
}

std::string ORVTaskList::shortIdentifier(const ORVTask& task) {
    return answer([&] {
        if (!identifiersAreMeasured_) {
            measureIdentifiers();
        }
        const Group* group = groupOf(task);
        const std::size_t length = task.threadID.size();
        const bool isWhole = !group || !text::isUUID(task.threadID) || group->shortLength > length;
        return task.threadID.substr(isWhole ? 0 : length - group->shortLength);
    });
}
