// Writes answers from values that are already known; nothing is read here but a template's folder.
// Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/answers.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <utility>
#include <vector>

#include "app/status_title.h"
#include "ctl/coloring.h"
#include "l10n/languages.h"
#include "platform/preferred_languages.h"
#include "text/json_writing.h"
#include "text/unicode.h"

namespace ctl {
namespace {

std::string usageJSON(const std::optional<ORVContextUsage>& usage) {
    if (!usage) {
        return "null";
    }
    return text::objectJSON({{"inputTokens", std::to_string(usage->inputTokens())},
                             {"contextWindow", std::to_string(usage->contextWindow())},
                             {"percentage", text::numberJSON(usage->percentage())}});
}

using Fields = std::vector<std::pair<std::string_view, std::string>>;

Fields fieldsOf(const ORVSessionSnapshot& snapshot) {
    return {{"title", text::quotedJSON(snapshot.title())},
            {"threadID", text::quotedJSON(snapshot.threadID())},
            {"file", text::quotedJSON(snapshot.fileURL())},
            {"compactionCount", std::to_string(snapshot.compactionCount())},
            {"contextUsage", usageJSON(snapshot.contextUsage())},
            {"contextStatus", std::to_string(snapshot.contextStatus())},
            {"compactionStatus", std::to_string(snapshot.compactionStatus())},
            {"lastUpdated", text::quotedJSON(utcText(snapshot.lastUpdated()))}};
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

std::string snapshotJSON(const std::optional<ORVSessionSnapshot>& snapshot) {
    return snapshot ? text::objectJSON(fieldsOf(*snapshot)) : "null";
}

std::string taskJSON(const ORVSessionSnapshot& snapshot, const std::optional<std::string>& folder) {
    auto fields = fieldsOf(snapshot);
    fields.emplace_back("folder", text::quotedJSONOrNull(folder));
    return text::objectJSON(fields);
}

std::string focusJSON(const ORVCodexFocusState& focusState) {
    return text::objectJSON({{"status", std::to_string(focusState.status())},
                             {"threadID", text::quotedJSONOrNull(focusState.threadID())},
                             {"codexVersion", text::quotedJSONOrNull(focusState.codexVersion())},
                             {"message", text::quotedJSON(focusState.message())}});
}

std::string titlesJSON(const Titles& titles) {
    std::vector<std::pair<std::string_view, std::string>> fields;
    for (const auto& [threadID, title] : titles) {
        fields.emplace_back(threadID, text::quotedJSON(title));
    }
    return text::objectJSON(fields);
}

std::string errorJSON(const ORVErrorSlot& error) {
    if (!error) {
        return "null";
    }
    return text::objectJSON({{"domain", text::quotedJSON(error->domain)},
                             {"code", std::to_string(error->code)},
                             {"description", text::quotedJSON(error->description)}});
}

std::string snapshotAnswer(const std::optional<ORVSessionSnapshot>& snapshot,
                           const ORVErrorSlot& error) {
    return text::objectJSON({{"snapshot", snapshotJSON(snapshot)}, {"error", errorJSON(error)}});
}

std::string focusAnswer(const ORVCodexFocusState& focusState, const ORVErrorSlot& error) {
    return text::objectJSON({{"focus", focusJSON(focusState)}, {"error", errorJSON(error)}});
}

std::string titlesAnswer(const Titles& titles) {
    return text::objectJSON({{"titles", titlesJSON(titles)}});
}

std::string snapshotText(const ORVSessionSnapshot& snapshot, bool isColored) {
    const std::string status = app::statusItemTitle(snapshot);
    const ORVContextUsage* usage = app::shownUsage(snapshot);
    return (isColored && usage ? coloredStatus(status, usage->percentage()) : status) + "  " +
           text::forTerminal(snapshot.title());
}

std::string filledTemplate(const ORVTemplate& ownTemplate, const ORVSessionSnapshot& snapshot,
                           Sources& sources) {
    const auto languages = platform::preferredLanguages();
    ORVTemplateValues values;
    values.status = app::statusItemTitle(snapshot);
    values.snapshot = &snapshot;
    values.now = sources.clock.now();
    values.timeFormat = l10n::languageForTag(languages.empty() ? "" : languages.front()).timeFormat;
    if (ownTemplate.wants("folder")) {
        values.folder = sources.session.workingFolderForSessionURL(snapshot.fileURL());
    }
    return ownTemplate.filled(values);
}

std::string focusText(const ORVCodexFocusState& focusState) {
    switch (focusState.status()) {
        case ORVCodexFocusStatusTaskInView:
            return "Task in view: " + *focusState.threadID();
        case ORVCodexFocusStatusNewTask:
            return "No task in view: a new task is being set up";
        case ORVCodexFocusStatusLogsUnavailable:
            return "No task in view: the Codex desktop application has written no logs here";
        case ORVCodexFocusStatusNoFocusRecord:
            return "No task in view: none was opened in the Codex desktop application so far";
        case ORVCodexFocusStatusIncompatible:
            return "No task in view: the format of the Codex desktop logs changed";
    }
    return focusState.message();
}

std::string titlesText(const Titles& titles) {
    std::string text;
    for (const auto& [threadID, title] : titles) {
        text += text::forTerminal(threadID) + '\t' + text::forTerminal(title) + '\n';
    }
    return text;
}

}  // namespace ctl
