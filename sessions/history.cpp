// Histories. interpretation.cpp records each event while it counts it, so that a history cannot
// disagree with the figures. Tests: tests/sessions/histories_test.cpp.

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

/// Merges the last usage into the one before and keeps the higher, where the ledger of compactions
/// needs neither: it needs the first usage after each compaction, and the last one before.
void mergeLastTwo(std::vector<ORVRecordedEvent>& history, std::size_t most) {
    const std::size_t count = history.size();
    if (count < 3 || !isUsage(history[count - 1]) || !isUsage(history[count - 2]) ||
        !isUsage(history[count - 3])) {
        return;
    }
    ORVRecordedEvent& first = history[count - 2];
    ORVRecordedEvent& second = history[count - 1];
    const std::size_t answers = first.event.answers + second.event.answers;
    if (answers > most) {
        return;
    }
    if (heightOf(second) >= heightOf(first)) {
        first = std::move(second);
    }
    first.event.answers = answers;
    history.pop_back();
}

/// Adds an event; until it is known what follows a usage, it stands by itself.
void append(std::vector<ORVRecordedEvent>& history, ORVRecordedEvent&& recorded, std::size_t most) {
    if (isUsage(recorded)) {
        mergeLastTwo(history, most);
    }
    history.push_back(std::move(recorded));
}

/// Merges neighbouring usages as far as an event may stand for so many. When that leaves more than
/// three quarters of the events, because compactions stand between the usages, every second
/// compaction is dropped as well.
void thinOut(std::vector<ORVRecordedEvent>& history, std::size_t most) {
    const std::size_t before = history.size();
    std::vector<ORVRecordedEvent> kept;
    for (ORVRecordedEvent& recorded : history) {
        append(kept, std::move(recorded), most);
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
    append(state.history, {{object["timestamp"].text, usage}, std::move(compactionIdentifier)},
           state.answersPerEvent);
    if (state.history.size() > wants_.eventsPerFile) {
        state.answersPerEvent *= 2;
        thinOut(state.history, state.answersPerEvent);
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
