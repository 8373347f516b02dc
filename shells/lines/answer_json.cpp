// Writes answers as JSON from views that are complete; nothing is read or decided here.
// Tests: tests/ctl/brimletctl_test.cpp, tests/packaging/json_test.sh.

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

#include "shells/lines/answers.h"
#include "text/json.h"

namespace json {
namespace {

using Fields = std::vector<std::pair<std::string_view, std::string>>;

std::string numberOrNull(std::optional<std::int64_t> number) {
    return number ? std::to_string(*number) : "null";
}

Fields usageFields(const ORVContextUsage& usage) {
    return {{"inputTokens", std::to_string(usage.inputTokens())},
            {"contextWindow", std::to_string(usage.contextWindow())},
            {"percentage", text::numberJSON(usage.percentage())}};
}

Fields fieldsOf(const ORVSessionSnapshot& snapshot) {
    const auto& usage = snapshot.contextUsage();
    return {{"title", text::quotedJSON(snapshot.title())},
            {"threadID", text::quotedJSON(snapshot.threadID())},
            {"file", text::quotedJSON(snapshot.fileURL())},
            {"compactionCount", std::to_string(snapshot.compactionCount())},
            {"contextUsage", usage ? text::objectJSON(usageFields(*usage)) : "null"},
            {"contextStatus", std::to_string(snapshot.contextStatus())},
            {"compactionStatus", std::to_string(snapshot.compactionStatus())},
            {"lastUpdated", text::quotedJSON(utcText(snapshot.lastUpdated()))}};
}

/// Writes Unix time as "2026-01-02T05:00:00Z".
std::string secondsJSON(std::int64_t seconds) {
    const std::string withNanoseconds = utcText({seconds, 0});
    return text::quotedJSON(withNanoseconds.substr(0, withNanoseconds.find('.')) + "Z");
}

std::string rateLimits(const std::vector<ORVRateLimit>& limits) {
    return text::arrayJSON(limits, [](const ORVRateLimit& limit) {
        return text::objectJSON(
            {{"minutes", numberOrNull(limit.minutes)},
             {"usedPercent", limit.usedPercent ? text::numberJSON(*limit.usedPercent) : "null"},
             {"resetsAt", limit.resetsAt ? secondsJSON(*limit.resetsAt) : "null"}});
    });
}

std::string agent(const ORVAgentFacts* facts) {
    if (!facts) {
        return "null";
    }
    return text::objectJSON({{"model", text::quotedJSONOrNull(facts->model)},
                             {"effort", text::quotedJSONOrNull(facts->effort)},
                             {"leftPercent", numberOrNull(facts->leftPercent)},
                             {"totalTokens", numberOrNull(facts->totalTokens)},
                             {"rateLimits", rateLimits(facts->rateLimits)}});
}

/// Returns "" for a task that could not be read.
std::string listedTask(const ORVTaskView& view) {
    if (!view.snapshot) {
        return "";
    }
    Fields fields = fieldsOf(*view.snapshot);
    fields.emplace_back("folder", text::quotedJSONOrNull(view.folder));
    fields.emplace_back("agent", agent(view.agent.get()));
    fields.emplace_back("parent", text::quotedJSONOrNull(view.parentID));
    fields.emplace_back("helpers", std::to_string(view.helpers));
    fields.emplace_back("changedAt", text::quotedJSON(utcText(view.changedAt)));
    return text::objectJSON(fields);
}

std::string timestampOrNull(const std::string& timestamp) {
    return timestamp.empty() ? "null" : text::quotedJSON(timestamp);
}

std::string historyPoint(const ORVHistoryEvent& event) {
    Fields fields = {{"at", timestampOrNull(event.at)}};
    if (event.isCompaction()) {
        fields.emplace_back("compaction", "true");
    } else {
        for (auto& field : usageFields(*event.usage)) {
            fields.push_back(std::move(field));
        }
    }
    return text::objectJSON(fields);
}

std::string compaction(const app::Compaction& compaction) {
    const auto tokens = [](const std::optional<ORVContextUsage>& usage) {
        return usage ? std::to_string(usage->inputTokens()) : "null";
    };
    return text::objectJSON({{"at", timestampOrNull(compaction.at)},
                             {"before", tokens(compaction.before)},
                             {"after", tokens(compaction.after)}});
}

}  // namespace

std::string utcText(ORVFileDate date) {
    // An inode may hold any number of seconds.
    constexpr std::int64_t kFirstSecond = -62167219200;  // 0000-01-01T00:00:00Z
    constexpr std::int64_t kLastSecond = 253402300799;   // 9999-12-31T23:59:59Z
    const std::time_t seconds = std::clamp(date.seconds, kFirstSecond, kLastSecond);
    std::tm time{};
    gmtime_r(&seconds, &time);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%09dZ",
                  time.tm_year + 1900, time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min,
                  time.tm_sec, date.nanoseconds);
    return text.data();
}

std::string snapshot(const std::optional<ORVSessionSnapshot>& snapshot) {
    return snapshot ? text::objectJSON(fieldsOf(*snapshot)) : "null";
}

std::string focus(const ORVCodexFocusState& focusState) {
    return text::objectJSON({{"status", std::to_string(focusState.status())},
                             {"threadID", text::quotedJSONOrNull(focusState.threadID())},
                             {"codexVersion", text::quotedJSONOrNull(focusState.codexVersion())},
                             {"message", text::quotedJSON(focusState.message())}});
}

std::string error(const ORVErrorSlot& error) {
    if (!error) {
        return "null";
    }
    return text::objectJSON({{"domain", text::quotedJSON(error->domain)},
                             {"code", std::to_string(error->code)},
                             {"description", text::quotedJSON(error->description)}});
}

std::string snapshotAnswer(const std::optional<ORVSessionSnapshot>& shown,
                           const ORVErrorSlot& slot) {
    return text::objectJSON({{"snapshot", snapshot(shown)}, {"error", error(slot)}});
}

std::string taskAnswer(const ORVTaskView& view) {
    return text::objectJSON({{"snapshot", snapshot(view.snapshot)},
                             {"error", error(view.error)},
                             {"agent", agent(view.agent.get())}});
}

std::string focusAnswer(const ORVCodexFocusState& focusState, const ORVErrorSlot& slot) {
    return text::objectJSON({{"focus", focus(focusState)}, {"error", error(slot)}});
}

std::string titlesAnswer(const std::map<std::string, std::string>& titles) {
    Fields fields;
    for (const auto& [threadID, title] : titles) {
        fields.emplace_back(threadID, text::quotedJSON(title));
    }
    return text::objectJSON({{"titles", text::objectJSON(fields)}});
}

std::string errorAnswer(const ORVError& told) {
    return text::objectJSON({{"error", error(told)}});
}

std::string tasksAnswer(const ORVTaskListView& list) {
    return text::objectJSON({{"tasks", text::arrayJSON(list.tasks, listedTask)}});
}

std::string historyAnswer(const ORVTaskView& view, const ORVHistory& history,
                          const std::vector<app::Compaction>& compactions) {
    const auto ofSnapshot = [&](const std::string& text) {
        return view.snapshot ? text::quotedJSON(text) : "null";
    };
    Fields fields = {{"threadID", ofSnapshot(view.snapshot ? view.snapshot->threadID() : "")},
                     {"title", ofSnapshot(view.snapshot ? view.snapshot->title() : "")},
                     {"points", text::arrayJSON(history, historyPoint)},
                     {"compactions", text::arrayJSON(compactions, compaction)}};
    if (view.absence == ORVAbsence::severalTasks) {
        fields.emplace_back("error", error(view.error));
    }
    return text::objectJSON(fields);
}

std::string limitsAnswer(const std::vector<ORVRateLimit>& limits, const std::string& at) {
    return text::objectJSON({{"rateLimits", rateLimits(limits)}, {"at", timestampOrNull(at)}});
}

}  // namespace json
