// Follows session files: each complete line is interpreted once, and a state belongs to one file.
// Tests: tests/sessions/reading_test.cpp.

#include <memory>
#include <mutex>
#include <new>
#include <unordered_set>

#include "platform/parallel.h"
#include "sessions/ORVSessionReader.h"
#include "sessions/markers.h"
#include "text/bytes.h"

namespace {

const ORVMarkerSearch& markers(const ORVSessionWants& wants) {
    static const ORVMarkerSearch kFigures(sessions::kMarkers);
    static const ORVMarkerSearch kFiguresAndFacts(sessions::kMarkersWithFacts);
    return wants.agentFacts ? kFiguresAndFacts : kFigures;
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
    return readFile(path, states_[path], memory, error);
}

std::optional<ORVSessionReader::File> ORVSessionReader::readFile(const std::string& path,
                                                                 ORVSessionParseState& state,
                                                                 ORVReadingMemory& memory,
                                                                 ORVErrorSlot* error) {
    const auto attributes = files_.attributesOfItem(path, error);
    if (!attributes || !attributes->size || !attributes->modifiedAt) {
        return std::nullopt;
    }
    ORVFileFollower::begin(state, *attributes);
    if (state.revision == 0 || state.offset != *attributes->size) {
        state.revision = ++lastRevision_;
    }
    if (!updateState(state, path, *attributes->size, memory, error)) {
        return std::nullopt;
    }
    return File{state, *attributes->modifiedAt};
}

bool ORVSessionReader::updateState(ORVSessionParseState& state, const std::string& path,
                                   std::uint64_t fileSize, ORVReadingMemory& memory,
                                   ORVErrorSlot* error) const {
    const auto result = follower_.readOn(
        state, path, fileSize, memory, [&](auto lines) { consumeLines(lines, state, memory.json); },
        error);
    state.pendingScanOffset = state.pendingData.size();
    // Unlike a log file, a session file that ends early counts as read.
    return result != ORVFileFollower::Result::failed;
}

void ORVSessionReader::readAhead(std::span<const ORVTask> tasks, const Progress& progress) {
    struct Unread {
        const std::string& path;
        ORVSessionParseState& state;
    };
    std::vector<Unread> unread;
    std::unordered_set<std::string_view> seen;  // A file may belong to several tasks.
    for (const ORVTask& task : tasks) {
        for (const ORVWalkedFile& file : task.files) {
            if (seen.insert(file.path).second) {
                unread.push_back({file.path, states_[file.path]});
            }
        }
    }
    std::mutex mutex;
    std::size_t done = 0;
    platform::inParallel(unread.size(), [&] {
        return [&, memory = std::make_shared<ORVReadingMemory>()](std::size_t i) {
            (void)readFile(unread[i].path, unread[i].state, *memory, nullptr);
            const std::lock_guard<std::mutex> lock(mutex);
            progress(++done);
        };
    });
}

bool ORVSessionReader::dataContainsUTF8(std::string_view data, std::string_view needle) {
    return text::containsBytes(data, needle);
}
