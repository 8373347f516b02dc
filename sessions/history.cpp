// What happened in a task, recorded by the interpreter while it reads (interpretation.cpp), so that
// a history cannot disagree with the figures. Tests: tests/sessions/history_test.cpp.

#include <unordered_set>
#include <utility>

#include "sessions/ORVCodexSessionSource.h"

namespace {

double heightOf(const ORVRecordedEvent& recorded) {
    return recorded.event.usage ? recorded.event.usage->percentage() : 0;
}

/// Keeps one event of every two neighbours: a compaction, else the higher usage.
void halve(std::vector<ORVRecordedEvent>& history) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i + 1 < history.size(); i += 2) {
        ORVRecordedEvent& first = history[i];
        ORVRecordedEvent& second = history[i + 1];
        const bool isFirst = !second.event.isCompaction() &&
                             (first.event.isCompaction() || heightOf(first) > heightOf(second));
        history[kept++] = std::move(isFirst ? first : second);
    }
    if (history.size() % 2 == 1) {
        history[kept++] = std::move(history.back());
    }
    history.resize(kept);
}

}  // namespace

void ORVCodexSessionSource::record(const ORVJSONValue& object, std::optional<ORVContextUsage> usage,
                                   std::string compactionIdentifier,
                                   ORVSessionParseState& state) const {
    if (eventsPerFile_ == 0) {
        return;
    }
    if (state.history.size() >= eventsPerFile_) {
        halve(state.history);
    }
    state.history.push_back({{object["timestamp"].text, usage}, std::move(compactionIdentifier)});
}

ORVHistory ORVCodexSessionSource::historyOfFiles(const std::vector<std::string>& urls) const {
    ORVHistory history;
    std::unordered_set<std::string_view> told;
    for (const std::string& url : urls) {
        for (const ORVRecordedEvent& recorded : states_.at(url).history) {
            const std::string& identifier = recorded.compactionIdentifier;
            if (identifier.empty() || told.insert(identifier).second) {
                history.push_back(recorded.event);
            }
        }
    }
    return history;
}

std::shared_ptr<const ORVHistory> ORVCodexSessionSource::historyForThreadID(
    std::string_view threadID) const {
    const auto found = totals_.find(threadID);
    return found == totals_.end() ? nullptr : found->second.history;
}
