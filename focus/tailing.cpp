// Finds the desktop application's log files and follows them as they grow. Files are read oldest
// first and lines in file order: on equal time stamps the event read last is the current one.
// Tests: tests/focus/focus_test.cpp.

#include <algorithm>
#include <cerrno>
#include <new>
#include <unordered_set>

#include "focus/ORVCodexFocusLogSource.h"
#include "focus/markers.h"
#include "text/marked_lines.h"
#include "text/paths.h"

namespace {

const ORVMarkerSearch& markers() {
    static const ORVMarkerSearch kSearch(focus::kMarkers);
    return kSearch;
}

}  // namespace

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
    std::vector<std::string> urls;
    urls.reserve(found.size());
    for (ORVWalkedFile& file : found) {
        urls.push_back(std::move(file.path));
    }
    return urls;
}

bool ORVCodexFocusLogSource::initializeFromLogURLs(const std::vector<std::string>& urls,
                                                   ORVErrorSlot* error) {
    initialized_ = true;
    return consumeUpdatesFromLogURLs(urls, error);
}

bool ORVCodexFocusLogSource::consumeUpdatesFromLogURLs(const std::vector<std::string>& urls,
                                                       ORVErrorSlot* error) {
    bool allRead = true;
    for (const std::string& url : urls) {
        allRead = consumeUpdates(url, error) && allRead;
    }
    chunkBuffer_.releaseMemory();
    const std::unordered_set<std::string_view> seen(urls.begin(), urls.end());
    std::erase_if(fileStates_, [&](const auto& entry) { return !seen.contains(entry.first); });
    return allRead;
}

bool ORVCodexFocusLogSource::consumeUpdates(const std::string& url, ORVErrorSlot* error) {
    const auto attributes = files_.attributesOfItem(url, error);
    if (!attributes || !attributes->size) {
        return false;
    }
    return updateFileState(stateForFile(url, *attributes), url, *attributes->size, error);
}

ORVFocusLogFileState& ORVCodexFocusLogSource::stateForFile(const std::string& url,
                                                           const ORVFileAttributes& attributes) {
    ORVFocusLogFileState& fileState = fileStates_[url];
    const bool isAnotherFile = fileState.fileIdentifier && attributes.fileNumber &&
                               *fileState.fileIdentifier != *attributes.fileNumber;
    if (isAnotherFile || *attributes.size < fileState.offset) {
        fileState = ORVFocusLogFileState{};
    }
    fileState.fileIdentifier = attributes.fileNumber;
    return fileState;
}

bool ORVCodexFocusLogSource::updateFileState(ORVFocusLogFileState& fileState,
                                             const std::string& url, std::uint64_t fileSize,
                                             ORVErrorSlot* error) {
    if (fileState.offset == fileSize) {
        return true;
    }
    if (fileState.refreshesToPassOver > 0) {
        --fileState.refreshesToPassOver;
        storeError(error, platform::posixError(ENOMEM));
        return false;
    }
    const auto file = files_.openForReading(url, error);
    if (!file) {
        return false;
    }
    try {
        return readOn(fileState, *file, fileSize, error);
    } catch (const std::bad_alloc&) {
        constexpr int kRefreshesInAMinute = 30;  // One every two seconds.
        fileState = ORVFocusLogFileState{};      // Frees the file's memory.
        fileState.refreshesToPassOver = kRefreshesInAMinute;
        chunkBuffer_.releaseMemory();
        storeError(error, platform::posixError(ENOMEM));
        return false;
    }
}

bool ORVCodexFocusLogSource::readOn(ORVFocusLogFileState& fileState, ORVOpenFile& file,
                                    std::uint64_t fileSize, ORVErrorSlot* error) {
    bool isRead = true;
    while (fileState.offset < fileSize) {
        const auto chunk =
            chunkBuffer_.read(file, fileState.offset, fileSize - fileState.offset, error);
        if (!chunk || chunk->empty()) {
            // Unlike a session file, a log that ends early counts as not read.
            isRead = false;
            break;
        }
        fileState.offset += chunk->size();
        consumeCompleteLinesFromFileState(fileState, *chunk);
    }
    fileState.pendingData.shrink();
    return isRead;
}

void ORVCodexFocusLogSource::consumeCompleteLinesFromFileState(ORVFocusLogFileState& fileState,
                                                               std::string_view chunk) {
    text::consumeChunk(fileState.pendingData, chunk, markers(), [&](auto lines) {
        for (const std::string_view line : lines) {
            consumeLineData(line, fileState);
        }
    });
}
