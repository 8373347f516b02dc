// Follows a session file as it grows: only appended bytes are read, and every complete line is
// interpreted once. A state belongs to one file: another inode or a smaller size begins a fresh
// one. Tests: tests/sessions/reading_test.cpp.

#include <cerrno>
#include <new>

#include "sessions/ORVCodexSessionSource.h"
#include "sessions/markers.h"
#include "text/bytes.h"
#include "text/marked_lines.h"

namespace {

const ORVMarkerSearch& markers() {
    static const ORVMarkerSearch kSearch(sessions::kMarkers);
    return kSearch;
}

}  // namespace

ORVSessionParseState& ORVCodexSessionSource::stateForFile(const std::string& url,
                                                          const ORVFileAttributes& attributes) {
    ORVSessionParseState& state = states_[url];
    const bool isAnotherFile = state.fileIdentifier && attributes.fileNumber &&
                               *state.fileIdentifier != *attributes.fileNumber;
    if (isAnotherFile || *attributes.size < state.offset) {
        state = ORVSessionParseState{};
    }
    if (state.revision == 0) {
        state.revision = ++lastRevision_;
    }
    state.fileIdentifier = attributes.fileNumber;
    return state;
}

bool ORVCodexSessionSource::updateState(ORVSessionParseState& state, const std::string& url,
                                        std::uint64_t fileSize, ORVErrorSlot* error) {
    if (state.offset == fileSize) {
        return true;
    }
    if (isOutOfMemory(state, fileSize)) {
        storeError(error, platform::posixError(ENOMEM));
        return false;
    }
    const auto file = files_.openForReading(url, error);
    if (!file) {
        return false;
    }
    state.revision = ++lastRevision_;
    try {
        return readOn(state, url, *file, fileSize, error);
    } catch (const std::bad_alloc&) {
        // Frees the file's memory. The next attempt reads the file from its beginning.
        state = ORVSessionParseState{};
        state.outOfMemory = {fileSize, clock_.now()};
        releaseReadingMemory();
        storeError(error, platform::posixError(ENOMEM));
        return false;
    }
}

/// Whether memory ran out for the file a short while ago, and its size is still the same. Reading
/// gigabytes in vain at every refresh would be felt.
bool ORVCodexSessionSource::isOutOfMemory(const ORVSessionParseState& state,
                                          std::uint64_t fileSize) const {
    constexpr std::chrono::seconds kPause(60);
    return state.outOfMemory && state.outOfMemory->fileSize == fileSize &&
           clock_.now() - state.outOfMemory->at < kPause;
}

bool ORVCodexSessionSource::readOn(ORVSessionParseState& state, const std::string& url,
                                   ORVOpenFile& file, std::uint64_t fileSize, ORVErrorSlot* error) {
    if (state.pendingData.empty()) {
        std::swap(state.pendingData, spareLine_);
    }
    bool isRead = true;
    while (state.offset < fileSize) {
        const auto chunk = chunkBuffer_.read(file, state.offset, fileSize - state.offset, error);
        if (!chunk || chunk->empty()) {
            // Unlike a log file, a session file that ends early counts as read.
            isRead = chunk.has_value();
            break;
        }
        if (state.offset == 0) {
            takeWorkingFolder(url, state, *chunk);
        }
        state.offset += chunk->size();
        consumeCompleteLinesFromState(state, *chunk);
    }
    if (state.pendingData.empty()) {
        std::swap(state.pendingData, spareLine_);
    }
    state.pendingData.shrink();
    return isRead;
}

void ORVCodexSessionSource::releaseReadingMemory() {
    chunkBuffer_.releaseMemory();
    jsonReader_.releaseMemory();
    spareLine_ = ORVByteBuffer();
}

void ORVCodexSessionSource::consumeCompleteLinesFromState(ORVSessionParseState& state,
                                                          std::string_view chunk) {
    if (state.isPassingOverLine) {
        const std::size_t lineFeed = chunk.find('\n');
        state.isPassingOverLine = lineFeed == std::string_view::npos;
        chunk.remove_prefix(state.isPassingOverLine ? chunk.size() : lineFeed + 1);
    }
    text::consumeChunk(state.pendingData, chunk, markers(),
                       [&](auto lines) { consumeLines(lines, state); });
    if (state.pendingData.size() > ORVJSONReader::kMaxBytes) {
        state.isPassingOverLine = true;
        state.pendingData = ORVByteBuffer();
    }
    state.pendingScanOffset = state.pendingData.size();
}

bool ORVCodexSessionSource::dataContainsUTF8(std::string_view data, std::string_view needle) {
    return text::containsBytes(data, needle);
}
