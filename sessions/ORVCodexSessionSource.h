#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/chunk_buffer.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVAgentSessionSource.h"
#include "sessions/ORVSessionParseState.h"
#include "sessions/json_object.h"

/// The session files of the Codex application: finds those of a task, follows them as they grow,
/// and sums up what their records say.
///
/// Lives as long as the program and keeps its place in every file that it ever read. Refresh queue
/// only; nothing is locked. What a failed call had read before it failed is kept.
class ORVCodexSessionSource final : public ORVAgentSessionSource {
public:
    /// The Codex home is the folder ".codex" in the user's home. The collaborators must outlive the
    /// source.
    ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock);
    ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock, std::string codexHome);

    // Snapshots (snapshots.cpp)

    std::optional<ORVSessionSnapshot> latestSnapshotWithError(ORVErrorSlot* error) override;
    std::optional<ORVSessionSnapshot> snapshotForThreadID(std::string_view threadID,
                                                          ORVErrorSlot* error) override;

    /// One file alone, brought up to date. None without an error when the file has no size or date.
    std::optional<ORVSessionSnapshot> snapshotForSessionURL(const std::string& url,
                                                            ORVErrorSlot* error);

    // Discovery (discovery.cpp)

    /// The session file with the latest modification date; of equal ones the first that the walk
    /// met. None, without an error, where there is no session file.
    std::optional<std::string> latestSessionURLWithError(ORVErrorSlot* error);

    /// Every session file whose name contains the identifier, letter case disregarded; oldest
    /// first, equal dates by path. Empty, without an error, where there is none. While the newest
    /// file's folder keeps its date, an answer is good for ten seconds.
    std::vector<std::string> sessionURLsForThreadID(std::string_view threadID, ORVErrorSlot* error);

    /// The newest of them.
    std::optional<std::string> sessionURLForThreadID(std::string_view threadID,
                                                     ORVErrorSlot* error);

    /// The first thing in the file's name that has the form of a thread identifier, as written.
    static std::optional<std::string> threadIDFromSessionURL(std::string_view url);

    // Titles (titles.cpp)

    std::map<std::string, std::string> threadTitles() override;

    // Reading (reading.cpp)

    /// Reads what the file holds between the state's offset and `fileSize`, a size read from the
    /// file's attributes just before, and interprets the complete lines in it. False with the
    /// system's error when the file cannot be opened or read; what was read before stays. A file
    /// that turns out shorter is no failure: the next call tries again. Keeps the memory for
    /// reading for the task's next file; a snapshot's end gives it back.
    bool updateState(ORVSessionParseState& state, const std::string& url, std::uint64_t fileSize,
                     ORVErrorSlot* error);

    // Interpretation (interpretation.cpp)

    /// Lets one line, without its line feed, change the state. Never fails: a line that cannot be
    /// used changes nothing. The reader leaves out lines that cannot matter. After the line
    /// ORVByteBuffer::kReadableBytesBeyond bytes must be readable.
    void consumeLine(std::string_view line, ORVSessionParseState& state);

    /// Whether a "compacted" record has every key of the current format.
    static bool isValidCurrentCompactionObject(const ORVJSONValue& object,
                                               const ORVJSONValue& payload);

    /// What tells one compaction from another; none for an anonymous one.
    static std::optional<std::string> compactionIdentifierForObject(const ORVJSONValue& object,
                                                                    const ORVJSONValue& payload,
                                                                    bool isCurrent);

    /// A number from 0 to 2^63 without a fraction; never a boolean or a string.
    static bool isNonnegativeIntegerNumber(const ORVJSONValue& value);
    static bool isPositiveIntegerNumber(const ORVJSONValue& value);

    static bool dataContainsUTF8(std::string_view data, std::string_view needle);

private:
    // Snapshots (snapshots.cpp)
    std::optional<ORVSessionSnapshot> readFile(const std::string& url, ORVErrorSlot* error);
    std::optional<ORVSessionSnapshot> readTask(const std::vector<std::string>& urls,
                                               std::string_view threadID, ORVErrorSlot* error);

    // Discovery (discovery.cpp)
    std::string sessionsFolder() const;
    bool cachedSearchHolds(const std::string& threadID);
    std::vector<std::string> searchSessionURLs(const std::string& threadID, ORVErrorSlot* error);
    std::optional<ORVFileDate> dateOfFolderHolding(const std::string& url);

    // Titles (titles.cpp)
    void refreshTitleIndexIfNeeded();
    std::optional<std::map<std::string, std::string>> readTitleIndex(const std::string& path);

    // Reading (reading.cpp)
    ORVSessionParseState& stateForFile(const std::string& url, const ORVFileAttributes& attributes);
    void consumeCompleteLinesFromState(ORVSessionParseState& state, std::string_view chunk);
    void releaseReadingMemory();

    // Interpretation (interpretation.cpp)
    static void consumeCompaction(const std::optional<std::string>& identifier,
                                  ORVSessionParseState& state);
    static void consumeTokenCount(const ORVJSONValue& payload, ORVSessionParseState& state);

    ORVFiles& files_;
    const ORVClock& clock_;
    const std::string codexHome_;
    ORVJSONReader jsonReader_;
    platform::ChunkBuffer chunkBuffer_;

    /// By path. An entry is replaced when its file is, and never removed.
    std::unordered_map<std::string, ORVSessionParseState> states_;

    std::map<std::string, std::string> titleIndex_;
    std::optional<ORVFileDate> titleIndexModifiedAt_;

    /// The last full search of each thread identifier, as the caller wrote it. An entry is made by
    /// a search that finds files and removed by one that finds none.
    struct Search {
        std::vector<std::string> urls;  ///< Oldest first; never empty.
        /// Of the folder of the newest file, right after the search.
        std::optional<ORVFileDate> directoryModifiedAt;
        ORVClock::TimePoint searchedAt;
    };
    std::map<std::string, Search, std::less<>> searches_;
};
