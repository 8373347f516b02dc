// Follows session files: each complete line is interpreted once, and a state belongs to one file.
// Tests: tests/sessions/reading_test.cpp.

#include <memory>
#include <mutex>
#include <new>
#include <unordered_set>

#include "platform/parallel.h"
#include "sessions/ORVSessionReader.h"
#include "text/bytes.h"

namespace {

const ORVMarkerSearch& markers(const ORVSessionWants& wants) {
    static const ORVMarkerSearch kFigures(sessions::kMarkers);
    static const ORVMarkerSearch kFiguresAndFacts(sessions::kMarkersWithFacts);
    return wants.agentFacts ? kFiguresAndFacts : kFigures;
}

/// Returns what the walk has found. A file that has changed since then is read on later.
ORVFileAttributes attributesOf(const ORVWalkedFile& file) {
    ORVFileAttributes attributes{file.size, std::nullopt, file.modifiedAt};
    if (file.fileIdentifier != 0) {
        attributes.fileIdentifier = file.fileIdentifier;
    }
    return attributes;
}

}  // namespace

/// No line of JSON holds a NUL, so nothing can come of a line with a hole.
ORVSessionReader::ORVSessionReader(ORVFiles& files, const ORVClock& clock, ORVSessionWants wants)
    : files_(files),
      wants_(wants),
      follower_(files, clock, markers(wants), ORVFileFollower::NULs::spoilTheirLine) {}

std::optional<ORVSessionReader::File> ORVSessionReader::readFile(const std::string& path,
                                                                 ORVReadingMemory& memory,
                                                                 ORVErrorSlot* error) {
    const auto attributes = files_.attributesOfItem(path, error);
    if (!attributes || !attributes->size || !attributes->modifiedAt) {
        return std::nullopt;
    }
    return readOn(states_[path], path, *attributes, memory, {}, error);
}

std::optional<ORVSessionReader::File> ORVSessionReader::readFile(const ORVWalkedFile* file,
                                                                 ORVReadingMemory& memory,
                                                                 ORVErrorSlot* error) {
    return readOn(states_[file->path], file->path, attributesOf(*file), memory, {}, error);
}

std::optional<ORVSessionReader::File> ORVSessionReader::readOn(
    ORVSessionParseState& state, const std::string& path, const ORVFileAttributes& attributes,
    ORVReadingMemory& memory, const ORVFileFollower::Opening& opening, ORVErrorSlot* error) {
    ORVFileFollower::begin(state, attributes);
    if (state.revision == 0 || state.offset != *attributes.size) {
        state.revision = ++lastRevision_;
    }
    if (!updateState(state, path, *attributes.size, memory, opening, error)) {
        return std::nullopt;
    }
    return File{state, *attributes.modifiedAt};
}

bool ORVSessionReader::updateState(ORVSessionParseState& state, const std::string& path,
                                   std::uint64_t fileSize, ORVReadingMemory& memory,
                                   const ORVFileFollower::Opening& opening,
                                   ORVErrorSlot* error) const {
    const auto result = follower_.readOn(
        state, path, fileSize, memory, opening,
        [&](auto lines) { consumeLines(lines, state, memory.json); }, error);
    state.pendingScanOffset = state.pendingData.size();
    // Unlike a log file, a session file that ends early counts as read.
    return result != ORVFileFollower::Result::failed;
}

void ORVSessionReader::readAhead(std::span<const ORVWalkedFile* const> files,
                                 const ReadingAhead& calls) {
    struct Unread {
        const ORVWalkedFile& file;
        ORVSessionParseState& state;
    };
    std::vector<Unread> unread;
    states_.reserve(files.size());
    std::unordered_set<const ORVSessionParseState*> seen;  // A file may belong to several tasks.
    for (const ORVWalkedFile* file : files) {
        ORVSessionParseState& state = states_[file->path];
        if (state.offset < file->size && seen.insert(&state).second) {
            unread.push_back({*file, state});
        }
    }
    std::mutex mutex;
    std::size_t done = 0;
    platform::inParallel(unread.size(), [&] {
        return [&, memory = std::make_shared<ORVReadingMemory>()](std::size_t i) {
            const auto& [file, state] = unread[i];
            const auto opening = [&](std::string_view bytes) {
                return !calls.opening || calls.opening(unread[i].file, bytes, memory->json);
            };
            readOn(state, file.path, attributesOf(file), *memory, opening, nullptr);
            const std::lock_guard<std::mutex> lock(mutex);
            if (calls.progress) {
                calls.progress(++done);
            }
        };
    });
}

bool ORVSessionReader::dataContainsUTF8(std::string_view data, std::string_view needle) {
    return text::containsBytes(data, needle);
}
