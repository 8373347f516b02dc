// Assembles snapshots, of one file and of a whole task. A task's context figures are those of its
// newest file; its compactions are counted over all its files, each identifier once.
// Tests: tests/sessions/snapshots_test.cpp.

#include <unordered_set>

#include "sessions/ORVCodexSessionSource.h"
#include "sessions/errors.h"
#include "text/paths.h"

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotForSessionURL(
    const std::string& url, ORVErrorSlot* error) {
    auto snapshot = readFile(url, error);
    releaseReadingMemory();
    return snapshot;
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::readFile(const std::string& url,
                                                                  ORVErrorSlot* error) {
    const auto attributes = files_.attributesOfItem(url, error);
    if (!attributes || !attributes->size || !attributes->modifiedAt) {
        return std::nullopt;
    }
    ORVSessionParseState& state = stateForFile(url, *attributes);
    if (!updateState(state, url, *attributes->size, error)) {
        return std::nullopt;
    }
    refreshTitleIndexIfNeeded();
    std::string threadID =
        threadIDFromSessionURL(url).value_or(std::string(text::lastPathComponent(url)));
    const auto title = titleIndex_.find(threadID);
    return ORVSessionSnapshot(title == titleIndex_.end() ? "Codex" : title->second,
                              std::move(threadID), url, state.compactionCount, state.contextUsage,
                              state.contextStatus, state.compactionStatus, *attributes->modifiedAt);
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotForThreadID(
    std::string_view threadID, ORVErrorSlot* error) {
    const std::vector<std::string> urls = sessionURLsForThreadID(threadID, error);
    if (urls.empty()) {
        storeErrorIfEmpty(error, sessions::threadSessionMissing());
        return std::nullopt;
    }
    auto snapshot = readTask(urls, threadID, error);
    releaseReadingMemory();
    return snapshot;
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::readTask(
    const std::vector<std::string>& urls, std::string_view threadID, ORVErrorSlot* error) {
    std::optional<ORVSessionSnapshot> newest;
    for (const std::string& url : urls) {
        newest = readFile(url, error);
        if (!newest) {
            return std::nullopt;
        }
    }
    const Totals& totals = totalsOfTask(urls, threadID);
    return ORVSessionSnapshot(
        newest->title(), std::string(threadID), newest->fileURL(), totals.compactionCount,
        newest->contextUsage(), newest->contextStatus(),
        totals.signalledStatus.value_or(newest->compactionStatus()), newest->lastUpdated());
}

const ORVCodexSessionSource::Totals& ORVCodexSessionSource::totalsOfTask(
    const std::vector<std::string>& urls, std::string_view threadID) {
    std::vector<std::uint64_t> revisions;
    revisions.reserve(urls.size());
    for (const std::string& url : urls) {
        revisions.push_back(states_[url].revision);
    }
    auto found = totals_.find(threadID);
    if (found == totals_.end()) {
        found = totals_.emplace(std::string(threadID), Totals{}).first;
    }
    // A revision belongs to one state only, so equal revisions mean the same files as well.
    if (found->second.revisions != revisions) {
        found->second = sumOfFiles(urls);
        found->second.revisions = std::move(revisions);
    }
    return found->second;
}

ORVCodexSessionSource::Totals ORVCodexSessionSource::sumOfFiles(
    const std::vector<std::string>& urls) const {
    Totals totals;
    std::unordered_set<std::string_view> compactions;
    for (const std::string& url : urls) {
        const ORVSessionParseState& state = states_.at(url);
        compactions.insert(state.compactionIdentifiers.begin(), state.compactionIdentifiers.end());
        totals.compactionCount += state.anonymousCompactionCount;
        if (state.sawCompactionSignal) {
            totals.signalledStatus = state.compactionStatus;
        }
    }
    totals.compactionCount += static_cast<std::int64_t>(compactions.size());
    if (eventsPerFile_ > 0) {
        totals.history = std::make_shared<const ORVHistory>(historyOfFiles(urls));
    }
    return totals;
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::latestSnapshotWithError(
    ORVErrorSlot* error) {
    const auto url = latestSessionURLWithError(error);
    if (!url) {
        return std::nullopt;
    }
    if (const auto threadID = threadIDFromSessionURL(*url)) {
        return snapshotForThreadID(*threadID, error);
    }
    auto snapshot = readTask({*url}, text::lastPathComponent(*url), error);
    releaseReadingMemory();
    return snapshot;
}
