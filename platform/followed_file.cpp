// Reads on in files that grow: only appended bytes are read, in chunks, and a line is passed on
// when its line feed has arrived. Tests: tests/sessions/reading_test.cpp,
// tests/focus/focus_test.cpp.

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/ORVFollowedFile.h"

namespace {

void passOverLine(ORVFollowedFile& state) {
    state.isPassingOverLine = true;
    std::string().swap(state.pendingData);  // Assigning "" would keep the memory.
}

}  // namespace

std::optional<std::string_view> ORVReadingMemory::readChunk(ORVOpenFile& file, std::uint64_t offset,
                                                            std::uint64_t limit,
                                                            ORVErrorSlot* error) {
    if (!chunk_) {
        chunk_.reset(new Chunk);  // Without touching it, as std::make_unique would.
    }
    const auto capacity = static_cast<std::size_t>(std::min<std::uint64_t>(limit, kChunkBytes));
    const auto count = file.readAt(offset, chunk_->bytes, capacity, error);
    if (!count) {
        return std::nullopt;
    }
    // Vector code reads beyond the end; the bytes there must be defined.
    std::memset(chunk_->bytes + *count, 0, text::kReadableBytesBeyond);
    return std::string_view(chunk_->bytes, *count);
}

void ORVReadingMemory::release() {
    chunk_.reset();
    json.releaseMemory();
    std::string().swap(spareLine);
}

bool ORVFileFollower::isAnotherFile(const ORVFollowedFile& state,
                                    const ORVFileAttributes& attributes) {
    const bool hasAnotherNumber = state.fileIdentifier && attributes.fileIdentifier &&
                                  *state.fileIdentifier != *attributes.fileIdentifier;
    return hasAnotherNumber || *attributes.size < state.offset;
}

/// Whether memory ran out for the file a short while ago, and its size is still the same. Reading
/// gigabytes in vain at every refresh would be felt.
bool ORVFileFollower::isPausing(const ORVFollowedFile& state, std::uint64_t fileSize) const {
    constexpr std::chrono::seconds kPause(60);
    if (!state.outOfMemory || state.outOfMemory->fileSize != fileSize) {
        return false;
    }
    const auto age = clock_.now() - state.outOfMemory->at;
    return age < kPause && age >= age.zero();  // The clock may have been set back.
}

ORVFileFollower::Result ORVFileFollower::readFile(ORVFollowedFile& state, const std::string& path,
                                                  std::uint64_t fileSize, ORVReadingMemory& memory,
                                                  const Opening& opening,
                                                  const text::LinesConsumer& consumeLines,
                                                  ORVErrorSlot* error) const {
    const auto file = files_.openForReading(path, error);
    if (!file) {
        return Result::failed;
    }
    if (state.pendingData.empty()) {
        // Most lines fit; growing would hold a line twice. What is not touched takes no memory.
        memory.spareLine.reserve(2 * ORVReadingMemory::kChunkBytes);
        std::swap(state.pendingData, memory.spareLine);
    }
    Result result = Result::upToDate;
    while (state.offset < fileSize) {
        const auto chunk = memory.readChunk(*file, state.offset, fileSize - state.offset, error);
        if (!chunk || chunk->empty()) {
            result = chunk ? Result::endedEarly : Result::failed;
            break;
        }
        if (state.offset == 0 && opening && !opening(*chunk)) {
            break;
        }
        state.offset += chunk->size();
        consumeChunk(state, *chunk, consumeLines);
        if (chunk->back() == '\0' && state.offset < fileSize) {
            skipHole(state, *file, fileSize);
        }
    }
    if (state.pendingData.empty()) {
        std::swap(state.pendingData, memory.spareLine);
    }
    state.pendingData.shrink_to_fit();
    return result;
}

void ORVFileFollower::consumeChunk(ORVFollowedFile& state, std::string_view chunk,
                                   const text::LinesConsumer& consumeLines) const {
    if (state.isPassingOverLine) {
        const std::size_t lineFeed = chunk.find('\n');
        state.isPassingOverLine = lineFeed == std::string_view::npos;
        chunk.remove_prefix(state.isPassingOverLine ? chunk.size() : lineFeed + 1);
    }
    text::consumeChunk(state.pendingData, chunk, markers_, [&](auto lines) {
        // Only the line that was pending can be as long, and it is passed on alone.
        if (!lines.empty() && lines.front().size() <= kLongestLineBytes) {
            consumeLines(lines);
        }
    });
    if (state.pendingData.size() > kLongestLineBytes) {
        passOverLine(state);
    }
}

/// Goes on behind a hole that begins at the offset, if nothing can come of the line that it is part
/// of. The byte before the offset is a NUL, so that line has begun. The last byte is always read,
/// because that tells whether the file still is as long.
void ORVFileFollower::skipHole(ORVFollowedFile& state, ORVOpenFile& file,
                               std::uint64_t fileSize) const {
    const std::uint64_t data = std::min(file.nextData(state.offset), fileSize - 1);
    if (data <= state.offset) {
        return;
    }
    const std::uint64_t hole = data - state.offset;
    const bool isLineLost = nuls_ == NULs::spoilTheirLine || state.isPassingOverLine ||
                            state.pendingData.size() + hole > kLongestLineBytes;
    if (isLineLost) {
        passOverLine(state);
        state.offset = data;
    }
}
