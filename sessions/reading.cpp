// Follows a session file as it grows: only appended bytes are read, and every complete line is
// interpreted once. Takes the size from the attributes that the snapshot read; keeps the rule that
// a state belongs to one file: another inode or a shorter file starts a fresh one.

#include "sessions/ORVCodexSessionSource.h"
#include "text/bytes.h"
#include "text/marked_lines.h"

namespace {

/// A line that holds neither cannot change any figure (see interpretation.cpp).
const ORVMarkerSearch& markers() {
    static const ORVMarkerSearch kMarkers({{"compact", 2, 5}, {"token_count", 2, 5}});
    return kMarkers;
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
    state.fileIdentifier = attributes.fileNumber;
    return state;
}

bool ORVCodexSessionSource::updateState(ORVSessionParseState& state, const std::string& url,
                                        std::uint64_t fileSize, ORVErrorSlot* error) {
    if (state.offset == fileSize) {
        return true;
    }
    const auto file = files_.openForReading(url, error);
    if (!file) {
        return false;
    }
    bool isRead = true;
    while (state.offset < fileSize) {
        const auto chunk = chunkBuffer_.read(*file, state.offset, fileSize - state.offset, error);
        if (!chunk || chunk->empty()) {
            // Unlike a log file, a session file that ends early counts as read.
            isRead = chunk.has_value();
            break;
        }
        state.offset += chunk->size();
        consumeCompleteLinesFromState(state, *chunk);
    }
    state.pendingData.shrink();
    return isRead;
}

void ORVCodexSessionSource::releaseReadingMemory() {
    chunkBuffer_.releaseMemory();
    jsonReader_.releaseMemory();
}

void ORVCodexSessionSource::consumeCompleteLinesFromState(ORVSessionParseState& state,
                                                          std::string_view chunk) {
    text::consumeChunk(state.pendingData, chunk, markers(),
                       [&](std::string_view line) { consumeLine(line, state); });
    state.pendingScanOffset = state.pendingData.size();
}

bool ORVCodexSessionSource::dataContainsUTF8(std::string_view data, std::string_view needle) {
    return text::containsBytes(data, needle);
}
