// Assembles snapshots, of one file and of a whole task. A task's context figures are those of its
// newest file; its compactions are counted over all its files, each identifier once.
// Tests: tests/sessions/snapshots_test.cpp.

#include <unordered_set>

#include "platform/program.h"
#include "sessions/ORVCodexSessionSource.h"
#include "sessions/ORVSessionSearch.h"
#include "text/bytes.h"

namespace {

const std::string& pathOf(const std::string& path) {
    return path;
}
const std::string& pathOf(const ORVWalkedFile* file) {
    return file->path;
}

/// Returns the identifier in the file's name, or else the whole name.
std::string idOfFile(const std::string& path) {
    return ORVCodexSessionSource::threadIDFromSessionURL(path).value_or(
        std::string(text::lastPathComponent(path)));
}

}  // namespace

ORVCodexSessionSource::ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock,
                                             const std::string& codexHome, ORVSessionWants wants)
    : clock_(clock),
      search_(files, clock, codexHome + "/sessions"),
      reader_(files, clock, wants),
      titles_(files, codexHome) {}

std::string ORVCodexSessionSource::defaultCodexHome() {
    return platform::homeFolder() + "/.codex";
}

std::optional<std::string> ORVCodexSessionSource::threadIDFromSessionURL(std::string_view path) {
    const std::string_view found = text::findUUID(text::lastPathComponent(path));
    return found.empty() ? std::nullopt : std::optional<std::string>(found);
}

std::optional<std::string> ORVCodexSessionSource::sessionURLForThreadID(std::string_view threadID,
                                                                        ORVErrorSlot* error) {
    std::vector<std::string> paths = sessionURLsForThreadID(threadID, error);
    return paths.empty() ? std::nullopt : std::optional(std::move(paths.back()));
}

ORVTitleIndex::Titles ORVCodexSessionSource::threadTitles() {
    titles_.refreshIfNeeded();
    return titles_.titles();
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotForSessionURL(
    const std::string& path, ORVErrorSlot* error) {
    forgetUnasked();
    ORVReadingMemory memory;
    const auto file = reader_.readFile(path, memory, error);
    if (!file) {
        return std::nullopt;
    }
    titles_.refreshIfNeeded();
    std::string threadID = idOfFile(path);
    std::string title = titles_.titleOf(threadID);
    const ORVSessionParseState& state = file->state;
    return ORVSessionSnapshot(std::move(title), std::move(threadID), path, state.compactionCount,
                              state.contextUsage, state.contextStatus, state.compactionStatus,
                              file->modifiedAt);
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotForThreadID(
    std::string_view threadID, ORVErrorSlot* error) {
    const std::vector<std::string> paths = sessionURLsForThreadID(threadID, error);
    if (paths.empty()) {
        storeErrorIfEmpty(error, sessions::threadSessionMissing());
        return std::nullopt;
    }
    return snapshotOfFiles(paths, threadID, Titles::refreshed, error);
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotForTask(const ORVTask& task,
                                                                         ORVErrorSlot* error) {
    return snapshotOfFiles(task.files, task.threadID, Titles::asTheyAre, error);
}

/// `files` are paths or files that were walked, oldest first.
template <typename Files>
std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotOfFiles(const Files& files,
                                                                         std::string_view threadID,
                                                                         Titles titles,
                                                                         ORVErrorSlot* error) {
    forgetUnasked();
    ORVReadingMemory memory;
    States states;
    std::optional<ORVFileDate> lastUpdated;
    for (const auto& each : files) {
        const auto file = reader_.readFile(each, memory, error);
        if (!file) {
            return std::nullopt;
        }
        states.push_back(&file->state);
        lastUpdated = file->modifiedAt;
    }
    if (titles == Titles::refreshed) {
        titles_.refreshIfNeeded();
    }
    const std::string& newestPath = pathOf(files.back());
    const ORVSessionParseState& newest = *states.back();
    const Totals& totals = totalsOfTask(states, threadID);
    return ORVSessionSnapshot(
        titles_.titleOf(idOfFile(newestPath)), std::string(threadID), newestPath,
        totals.compactionCount, newest.contextUsage, newest.contextStatus,
        totals.signalledStatus.value_or(newest.compactionStatus), *lastUpdated);
}

const ORVCodexSessionSource::Totals& ORVCodexSessionSource::totalsOfTask(
    const States& states, std::string_view threadID) {
    std::vector<std::uint64_t> revisions;
    revisions.reserve(states.size());
    for (const ORVSessionParseState* state : states) {
        revisions.push_back(state->revision);
    }
    Totals& totals = totals_[threadID];
    // A revision belongs to one state only, so equal revisions mean the same files as well.
    if (totals.revisions != revisions) {
        totals = sumOf(states);
        totals.revisions = std::move(revisions);
    }
    return totals;
}

ORVCodexSessionSource::Totals ORVCodexSessionSource::sumOf(const States& states) const {
    Totals totals;
    std::unordered_set<std::string_view> compactions;
    for (const ORVSessionParseState* state : states) {
        compactions.insert(state->compactionIdentifiers.begin(),
                           state->compactionIdentifiers.end());
        totals.compactionCount += state->anonymousCompactionCount;
        if (state->sawCompactionSignal) {
            totals.signalledStatus = state->compactionStatus;
        }
    }
    totals.compactionCount += static_cast<std::int64_t>(compactions.size());
    if (reader_.wants().eventsPerFile > 0) {
        totals.history = std::make_shared<const ORVHistory>(ORVSessionReader::historyOf(states));
    }
    if (reader_.wants().agentFacts) {
        totals.agentFacts =
            std::make_shared<const ORVAgentFacts>(ORVSessionReader::agentFactsOf(states));
    }
    return totals;
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::latestSnapshotWithError(
    ORVErrorSlot* error) {
    const auto path = latestSessionURLWithError(error);
    if (!path) {
        return std::nullopt;
    }
    const auto threadID = threadIDFromSessionURL(*path);
    return threadID ? snapshotForThreadID(*threadID, error)
                    : snapshotOfFiles(std::vector{*path}, text::lastPathComponent(*path),
                                      Titles::refreshed, error);
}

std::shared_ptr<const ORVHistory> ORVCodexSessionSource::historyForThreadID(
    std::string_view threadID) const {
    const Totals* const totals = totals_.find(threadID);
    return totals ? totals->history : nullptr;
}

std::shared_ptr<const ORVAgentFacts> ORVCodexSessionSource::agentFactsForThreadID(
    std::string_view threadID) const {
    const Totals* const totals = totals_.find(threadID);
    return totals ? totals->agentFacts : nullptr;
}

/// Called before anything is read, since it ends what is lent from the tables.
void ORVCodexSessionSource::forgetUnasked() {
    reader_.forgetUnaskedFiles(clock_.now());
    totals_.age(clock_.now());
}

void ORVCodexSessionSource::forgetFiles() {
    reader_.forgetFiles();
    totals_.clear();
}

void ORVCodexSessionSource::forget(const ORVTask& task) {
    for (const ORVWalkedFile* file : task.files) {
        reader_.forgetFile(file->path);
    }
    totals_.erase(task.threadID);
}
