// Tells what each compaction did, in one pass over a task's history.
// Tests: tests/shells/history_test.cpp.

#include "app/compaction_ledger.h"

#include "text/timestamps.h"

namespace app {

std::optional<std::int64_t> Compaction::shedTokens() const {
    if (!before || !after) {
        return std::nullopt;
    }
    return before->inputTokens() - after->inputTokens();
}

std::vector<Compaction> compactionsOf(const ORVHistory& history) {
    std::vector<Compaction> compactions;
    std::optional<std::chrono::sys_seconds> timeBefore;
    if (!history.empty()) {
        timeBefore = text::timeOf(history.front().at);
    }
    std::optional<ORVContextUsage> usage;  // The last one after the compaction before.
    std::size_t answers = 0;
    for (const ORVHistoryEvent& event : history) {
        if (!event.isCompaction()) {
            if (!usage && !compactions.empty()) {
                compactions.back().after = event.usage;
            }
            usage = event.usage;
            answers += event.answers;
            continue;
        }
        Compaction compaction;
        compaction.number = compactions.size() + 1;
        compaction.at = event.at;
        compaction.time = text::timeOf(event.at);
        compaction.before = usage;
        compaction.answers = answers;
        if (timeBefore && compaction.time && *compaction.time >= *timeBefore) {
            compaction.elapsed = *compaction.time - *timeBefore;
        }
        timeBefore = compaction.time;
        compactions.push_back(std::move(compaction));
        usage.reset();
        answers = 0;
    }
    return compactions;
}

void leaveOutOlder(std::chrono::sys_seconds since, ORVHistory& history,
                   std::vector<Compaction>& compactions) {
    const auto isOlder = [since](const auto& time) { return !time || *time < since; };
    std::erase_if(history, [&](const auto& event) { return isOlder(text::timeOf(event.at)); });
    std::erase_if(compactions, [&](const auto& each) { return isOlder(each.time); });
}

}  // namespace app
