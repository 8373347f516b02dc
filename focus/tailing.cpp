// Finds the desktop application's log files and follows them as they grow. Files are read oldest
// first and lines in file order: on equal time stamps the event read last is the current one.
// Tests: tests/focus/focus_test.cpp.

#include <algorithm>
#include <unordered_set>

#include "focus/ORVCodexFocusLogSource.h"
#include "text/bytes.h"

std::vector<std::string> ORVCodexFocusLogSource::logFileURLsWithError(ORVErrorSlot* error) {
    std::vector<ORVWalkedFile> found;
    ORVErrorSlot firstFailure;
    files_.walk(
        logsRoot_, [](std::string_view name) { return text::hasExtension(name, "log"); },
        [&](ORVWalkedFile&& file) { found.push_back(std::move(file)); },
        [&](ORVError&& failure) { storeErrorIfEmpty(&firstFailure, std::move(failure)); });
    if (firstFailure) {
        storeErrorIfEmpty(error, std::move(*firstFailure));
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.modifiedAt < b.modifiedAt; });
    std::vector<std::string> paths;
    paths.reserve(found.size());
    for (ORVWalkedFile& file : found) {
        paths.push_back(std::move(file.path));
    }
    return paths;
}

bool ORVCodexFocusLogSource::initializeFromLogURLs(const std::vector<std::string>& paths,
                                                   ORVErrorSlot* error) {
    initialized_ = true;
    return consumeUpdatesFromLogURLs(paths, error);
}

bool ORVCodexFocusLogSource::consumeUpdatesFromLogURLs(const std::vector<std::string>& paths,
                                                       ORVErrorSlot* error) {
    ORVReadingMemory memory;
    bool allRead = true;
    for (const std::string& path : paths) {
        allRead = consumeUpdates(path, memory, error) && allRead;
    }
    const std::unordered_set<std::string_view> seen(paths.begin(), paths.end());
    std::erase_if(fileStates_, [&](const auto& entry) { return !seen.contains(entry.first); });
    return allRead;
}

bool ORVCodexFocusLogSource::consumeUpdates(const std::string& path, ORVReadingMemory& memory,
                                            ORVErrorSlot* error) {
    const auto attributes = files_.attributesOfItem(path, error);
    if (!attributes || !attributes->size) {
        return false;
    }
    ORVFocusLogFileState& fileState = fileStates_[path];
    ORVFileFollower::begin(fileState, *attributes);
    return updateFileState(fileState, path, *attributes->size, memory, error);
}

bool ORVCodexFocusLogSource::updateFileState(ORVFocusLogFileState& fileState,
                                             const std::string& path, std::uint64_t fileSize,
                                             ORVReadingMemory& memory, ORVErrorSlot* error) {
    const auto result = follower_.readOn(
        fileState, path, fileSize, memory, {},
        [&](auto lines) {
            for (const std::string_view line : lines) {
                consumeLineData(line, fileState);
            }
        },
        error);
    // Unlike a session file, a log that ends early counts as not read.
    return result == ORVFileFollower::Result::upToDate;
}
