#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/chunk_buffer.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVAgentSessionSource.h"
#include "sessions/ORVHistoryEvent.h"
#include "sessions/ORVSessionParseState.h"
#include "sessions/json_object.h"

/// A task: all session files whose names hold its identifier.
struct ORVTask {
    /// As the newest file's name writes it. The whole name of a file that holds no identifier.
    std::string threadID;
    std::vector<ORVWalkedFile> files;  ///< Oldest first, equal dates by path; never empty.

    const ORVWalkedFile& newestFile() const { return files.back(); }
};

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

    static std::string defaultCodexHome();

    // Snapshots (snapshots.cpp)

    std::optional<ORVSessionSnapshot> latestSnapshotWithError(ORVErrorSlot* error) override;
    std::optional<ORVSessionSnapshot> snapshotForThreadID(std::string_view threadID,
                                                          ORVErrorSlot* error) override;

    /// One file alone, brought up to date. None without an error when the file has no size or date.
    std::optional<ORVSessionSnapshot> snapshotForSessionURL(const std::string& url,
                                                            ORVErrorSlot* error);

    // Discovery (discovery.cpp)

    /// The folder below which the session files are.
    std::string sessionsFolder() const;

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

    // Tasks (tasks.cpp)

    /// Every task, the one with the newest file first, equal dates by path. None, with an error,
    /// where the sessions folder cannot be walked.
    std::optional<std::vector<ORVTask>> tasksWithError(ORVErrorSlot* error);

    /// The figures that snapshotForThreadID gives for the task's identifier. Keeps the memory for
    /// reading, for the next of many tasks.
    std::optional<ORVSessionSnapshot> snapshotForTask(const ORVTask& task, ORVErrorSlot* error);

    /// Forgets what was read of every session file: for a caller that asks about each of many tasks
    /// once.
    void forgetFiles();

    // Working folders (working_folders.cpp)

    /// The folder that the task of this session file works in: the string payload.cwd of the file's
    /// first line, when that is a record of the type "session_meta" and the string an absolute
    /// path. None for every other file. Read once per file, and kept.
    std::optional<std::string> workingFolderForSessionURL(const std::string& url);

    /// The same for the task's newest file. Keeps the memory for reading, for the next of many
    /// tasks.
    std::optional<std::string> workingFolderForTask(const ORVTask& task);

    /// Of the tasks that work in this folder or in one that holds it, the one with the deepest
    /// folder; among equals the one with the newest file. `folder` is a real path. None, without an
    /// error, where no task does.
    std::optional<ORVSessionSnapshot> snapshotForFolder(const std::string& folder,
                                                        ORVErrorSlot* error);

    // Histories (history.cpp)

    /// From now on what happens is recorded while files are read, at most this many events of each
    /// file: where there are more, neighbours are merged. Called before anything is read.
    void keepHistories(std::size_t eventsPerFile) { eventsPerFile_ = eventsPerFile; }

    /// What happened in the task since its beginning, files oldest first, as of its last snapshot;
    /// null where there was none. A compaction that several files tell of is told once.
    std::shared_ptr<const ORVHistory> historyForThreadID(std::string_view threadID) const;

    // Titles (titles.cpp)

    std::map<std::string, std::string> threadTitles() override;

    /// The file that holds them.
    std::string titleIndexPath() const;

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
    /// What a task's files come to. Summing up a million compactions at every refresh would be
    /// felt, so it is done only after one of the files changed.
    struct Totals {
        std::vector<std::uint64_t> revisions;  ///< Of the files' states, in their order.
        std::int64_t compactionCount = 0;
        std::optional<ORVCompactionStatus> signalledStatus;  ///< Of the newest file with a signal.
        std::shared_ptr<const ORVHistory> history;           ///< Null unless histories are kept.
    };

    /// What the first line of a file said.
    struct WorkingFolder {
        std::uint64_t fileNumber = 0;
        ORVFileDate modifiedAt;
        bool isFinal = false;  ///< The line has ended, or is longer than any that counts.
        std::optional<std::string> path;
    };

    // Snapshots (snapshots.cpp)
    const Totals& totalsOfTask(const std::vector<std::string>& urls, std::string_view threadID);
    Totals sumOfFiles(const std::vector<std::string>& urls) const;
    std::optional<ORVSessionSnapshot> readFile(const std::string& url, ORVErrorSlot* error);
    std::optional<ORVSessionSnapshot> readTask(const std::vector<std::string>& urls,
                                               std::string_view threadID, ORVErrorSlot* error);

    // Discovery (discovery.cpp)
    std::optional<std::vector<ORVWalkedFile>> sessionFilesWithError(ORVErrorSlot* error);
    bool cachedSearchHolds(const std::string& threadID);
    std::vector<std::string> searchSessionURLs(const std::string& threadID, ORVErrorSlot* error);
    std::optional<ORVFileDate> dateOfFolderHolding(const std::string& url);

    // Titles (titles.cpp)
    void refreshTitleIndexIfNeeded();
    std::optional<std::map<std::string, std::string>> readTitleIndex(const std::string& path);

    // Reading (reading.cpp)
    ORVSessionParseState& stateForFile(const std::string& url, const ORVFileAttributes& attributes);
    bool readOn(ORVSessionParseState& state, const std::string& url, ORVOpenFile& file,
                std::uint64_t fileSize, ORVErrorSlot* error);
    bool isOutOfMemory(const ORVSessionParseState& state, std::uint64_t fileSize) const;
    void consumeCompleteLinesFromState(ORVSessionParseState& state, std::string_view chunk);
    void releaseReadingMemory();

    // Interpretation (interpretation.cpp)
    static bool consumeCompaction(const std::optional<std::string>& identifier,
                                  ORVSessionParseState& state);
    static bool consumeTokenCount(const ORVJSONValue& payload, ORVSessionParseState& state);

    // Working folders (working_folders.cpp)
    const WorkingFolder& workingFolder(const std::string& url, std::uint64_t fileNumber,
                                       ORVFileDate modifiedAt);
    WorkingFolder readWorkingFolder(const std::string& url, platform::ChunkBuffer& chunkBuffer,
                                    ORVJSONReader& jsonReader) const;
    void takeWorkingFolder(const std::string& url, const ORVSessionParseState& state,
                           std::string_view firstChunk);
    void readWorkingFoldersAhead(const std::vector<ORVTask>& tasks);

    // Histories (history.cpp)
    void record(const ORVJSONValue& object, std::optional<ORVContextUsage> usage,
                std::string compactionIdentifier, ORVSessionParseState& state) const;
    ORVHistory historyOfFiles(const std::vector<std::string>& urls) const;

    ORVFiles& files_;
    const ORVClock& clock_;
    const std::string codexHome_;
    ORVJSONReader jsonReader_;
    platform::ChunkBuffer chunkBuffer_;
    ORVByteBuffer spareLine_;  ///< Empty; its memory goes from file to file while many are read.

    /// By path. An entry is replaced when its file is.
    std::unordered_map<std::string, ORVSessionParseState> states_;
    std::uint64_t lastRevision_ = 0;
    std::size_t eventsPerFile_ = 0;

    std::map<std::string, Totals, std::less<>> totals_;  ///< By thread identifier.

    std::unordered_map<std::string, WorkingFolder> workingFolders_;  ///< By the file's path.

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
