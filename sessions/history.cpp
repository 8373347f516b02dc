// Histories. interpretation.cpp records each event while it counts it, so that a history cannot
// disagree with the figures. Tests: tests/sessions/tasks_test.cpp.

#include <unordered_set>
#include <utility>

#include "sessions/ORVSessionReader.h"

namespace {

double heightOf(const ORVRecordedEvent& recorded) {
    return recorded.event.usage ? recorded.event.usage->percentage() : 0;
}

bool isUsage(const ORVRecordedEvent& recorded) {
    return !recorded.event.isCompaction();
}

/// Keeps the higher of two usages as the first.
void merge(ORVRecordedEvent& first, ORVRecordedEvent&& second) {
    if (heightOf(second) >= heightOf(first)) {
        first = std::move(second);
    }
}

/// Merges neighbouring usages two by two. When that leaves more than three quarters of the events,
/// because compactions stand between the usages, every second compaction is dropped as well.
void thinOut(std::vector<ORVRecordedEvent>& history) {
    const std::size_t before = history.size();
    std::vector<ORVRecordedEvent> kept;
    for (std::size_t i = 0; i < history.size(); ++i) {
        kept.push_back(std::move(history[i]));
        if (i + 1 < history.size() && isUsage(kept.back()) && isUsage(history[i + 1])) {
            merge(kept.back(), std::move(history[++i]));
        }
    }
    if (kept.size() > before / 4 * 3) {
        bool isKept = false;
        std::erase_if(kept, [&](const ORVRecordedEvent& recorded) {
            isKept = isUsage(recorded) ? isKept : !isKept;
            return !isUsage(recorded) && !isKept;
        });
    }
    history = std::move(kept);
}

}  // namespace

void ORVSessionReader::record(const ORVJSONValue& object, std::optional<ORVContextUsage> usage,
                              std::string compactionIdentifier, ORVSessionParseState& state) const {
    if (wants_.eventsPerFile == 0) {
        return;
    }
    ORVRecordedEvent recorded{{object["timestamp"].text, usage}, std::move(compactionIdentifier)};
    if (isUsage(recorded) && state.eventsInLastPoint < state.eventsPerPoint &&
        !state.history.empty() && isUsage(state.history.back())) {
        ++state.eventsInLastPoint;
        return merge(state.history.back(), std::move(recorded));
    }
    state.history.push_back(std::move(recorded));
    state.eventsInLastPoint = 1;
    if (state.history.size() > wants_.eventsPerFile) {
        thinOut(state.history);
        state.eventsPerPoint *= 2;
    }
}

ORVHistory ORVSessionReader::historyOf(std::span<const ORVSessionParseState* const> files) {
    ORVHistory history;
    std::unordered_set<std::string_view> seen;
    for (const ORVSessionParseState* file : files) {
        for (const ORVRecordedEvent& recorded : file->history) {
            const std::string& identifier = recorded.compactionIdentifier;
            if (identifier.empty() || seen.insert(identifier).second) {
                history.push_back(recorded.event);
            }
        }
    }
    return history;
}
