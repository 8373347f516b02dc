// Assembles snapshots: one file at a time, then a whole task. The context figures are those of the
// task's newest file; compactions are summed over all its files, each identifier once.

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
    std::unordered_set<std::string> compactions;
    std::int64_t anonymousCompactions = 0;
    std::optional<ORVCompactionStatus> signalledStatus;
    std::optional<ORVSessionSnapshot> newest;
    for (const std::string& url : urls) {
        newest = readFile(url, error);
        if (!newest) {
            return std::nullopt;
        }
        const ORVSessionParseState& state = states_[url];
        compactions.insert(state.compactionIdentifiers.begin(), state.compactionIdentifiers.end());
        anonymousCompactions += state.anonymousCompactionCount;
        if (state.sawCompactionSignal) {
            signalledStatus = state.compactionStatus;
        }
    }
    return ORVSessionSnapshot(newest->title(), std::string(threadID), newest->fileURL(),
                              static_cast<std::int64_t>(compactions.size()) + anonymousCompactions,
                              newest->contextUsage(), newest->contextStatus(),
                              signalledStatus.value_or(newest->compactionStatus()),
                              newest->lastUpdated());
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::latestSnapshotWithError(
    ORVErrorSlot* error) {
    const auto url = latestSessionURLWithError(error);
    if (!url) {
        return std::nullopt;
    }
    const auto threadID = threadIDFromSessionURL(*url);
    return threadID ? snapshotForThreadID(*threadID, error) : snapshotForSessionURL(*url, error);
}
