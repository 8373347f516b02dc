#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
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
#include "sessions/ORVTask.h"
#include "text/json_reading.h"

/// The session files of the Codex application: finds those of a task, follows them as they grow,
/// and sums up what their records say.
///
/// A source keeps its place in every file that it has read. It locks nothing, so one thread uses it
/// at a time: in the application the refresh queue. A call that fails keeps what it had read,
/// unless memory ran out.
class ORVCodexSessionSource final : public ORVAgentSessionSource {
public:
    /// Without `codexHome` the Codex home is the folder ".codex" in the user's home. `files` and
    /// `clock` must outlive the source.
    ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock);
    ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock, std::string codexHome);

    static std::string defaultCodexHome();

    // Snapshots (snapshots.cpp)

    std::optional<ORVSessionSnapshot> latestSnapshotWithError(ORVErrorSlot* error) override;
    std::optional<ORVSessionSnapshot> snapshotForThreadID(std::string_view threadID,
                                                          ORVErrorSlot* error) override;

    /// Reads on in one file and returns its figures alone. Returns none, without an error, when the
    /// file system tells no size or no date of the file.
    std::optional<ORVSessionSnapshot> snapshotForSessionURL(const std::string& url,
                                                            ORVErrorSlot* error);

    // Discovery (discovery.cpp)

    /// Returns the folder below which all session files stand.
    std::string sessionsFolder() const;

    /// Returns the session file with the latest modification date; among equal dates, the one that
    /// the walk met first. Returns none, without an error, when there is no session file.
    std::optional<std::string> latestSessionURLWithError(ORVErrorSlot* error);

    /// Returns every session file whose name contains the identifier, letter case disregarded:
    /// oldest first, equal dates by path. The list is empty, without an error, when there is no
    /// such file. An answer is kept for ten seconds while the newest file's folder keeps its date.
    std::vector<std::string> sessionURLsForThreadID(std::string_view threadID, ORVErrorSlot* error);

    /// Returns the newest of these files.
    std::optional<std::string> sessionURLForThreadID(std::string_view threadID,
                                                     ORVErrorSlot* error);

    /// Returns the first part of the file's name that has the form of a thread identifier, in the
    /// letter case in which it stands there.
    static std::optional<std::string> threadIDFromSessionURL(std::string_view url);

    // Tasks (tasks.cpp)

    /// Returns every task, the one with the newest file first, equal dates by path. Returns none,
    /// with an error, when the sessions folder cannot be walked.
    std::optional<std::vector<ORVTask>> tasksWithError(ORVErrorSlot* error);

    /// Returns the figures that snapshotForThreadID returns for the task's identifier. The memory
    /// for reading stays allocated, because a caller asks about many tasks in turn.
    std::optional<ORVSessionSnapshot> snapshotForTask(const ORVTask& task, ORVErrorSlot* error);

    /// Forgets the figures of every session file, but not the working folders. A caller that asks
    /// about each of many tasks once calls this after each, so that memory does not grow with them.
    void forgetFiles();

    // Working folders (working_folders.cpp)

    /// Returns the folder that the task of this session file works in: the string payload.cwd of
    /// the file's first line, when that line is a record of the type "session_meta" and the string
    /// an absolute path. Returns none for every other file. A first line is read once and kept.
    std::optional<std::string> workingFolderForSessionURL(const std::string& url);

    /// Returns the same for the task's newest file. The memory for reading stays allocated, because
    /// a caller asks about many tasks in turn.
    std::optional<std::string> workingFolderForTask(const ORVTask& task);

    /// Returns a task that works in this folder or in one that holds it: of several, the one with
    /// the deepest folder, and among equals the one with the newest file. `folder` is an absolute
    /// path without links. Returns none, without an error, when no task works there.
    std::optional<ORVSessionSnapshot> snapshotForFolder(const std::string& folder,
                                                        ORVErrorSlot* error);

    // Histories (history.cpp)

    /// Makes the source record what happens in every file that it reads, at most this many events
    /// of each. When there are more, neighbouring usages are merged, and if that is not enough,
    /// compactions are left out. Must be called before anything is read.
    void keepHistories(std::size_t eventsPerFile) { eventsPerFile_ = eventsPerFile; }

    /// Returns what happened in the task from its beginning to its last snapshot, the oldest file's
    /// events first; null when no snapshot was made since forgetFiles, or when histories are not
    /// kept. A compaction that stands in several files occurs once.
    std::shared_ptr<const ORVHistory> historyForThreadID(std::string_view threadID) const;

    // Titles (titles.cpp)

    std::map<std::string, std::string> threadTitles() override;

    /// Reads the titles now and never again, even if they cannot be read now. This is for reading
    /// many tasks at once, where asking for the file's date at every task would be felt.
    void readTitlesOnce();

    /// Returns the path of the file that holds the titles.
    std::string titleIndexPath() const;

    // Reading (reading.cpp)

    /// Reads what the file holds between the state's offset and `fileSize`, which comes from the
    /// file's attributes of this moment, and interprets the complete lines in it. Returns false,
    /// with the system's error, when the file cannot be opened or read; the state then keeps what
    /// was read before. When memory runs out the error is ENOMEM: the state begins anew, and the
    /// file is not read for a minute unless its size changes. A file that turns out to be shorter
    /// is no failure, and the next call tries again. The memory for reading stays allocated until
    /// the snapshot that needs it is made.
    bool updateState(ORVSessionParseState& state, const std::string& url, std::uint64_t fileSize,
                     ORVErrorSlot* error);

    // Interpretation (interpretation.cpp)

    /// Interprets one line, without its line feed. A line that cannot be understood leaves the
    /// state as it is. ORVByteBuffer::kReadableBytesBeyond bytes after the line must be readable.
    void consumeLine(std::string_view line, ORVSessionParseState& state);

    /// Interprets lines in file order, as consumeLine does with each in turn, but faster: a usage
    /// that another one of these lines replaces is not read unless histories are kept.
    void consumeLines(std::span<const std::string_view> lines, ORVSessionParseState& state);

    /// Whether a "compacted" record has every key of the current format.
    static bool isValidCurrentCompactionObject(const ORVJSONValue& object,
                                               const ORVJSONValue& payload);

    /// Returns the name of a compaction, by which it is counted once: "current:" and its window's
    /// identifier, or "legacy:" and its time stamp. Returns none when the record holds no such
    /// text.
    static std::optional<std::string> compactionIdentifierForObject(const ORVJSONValue& object,
                                                                    const ORVJSONValue& payload,
                                                                    bool isCurrent);

    /// Whether the value is a number from 0 to 2^63 without a fraction. A boolean and a string are
    /// not numbers.
    static bool isNonnegativeIntegerNumber(const ORVJSONValue& value);
    static bool isPositiveIntegerNumber(const ORVJSONValue& value);

    static bool dataContainsUTF8(std::string_view data, std::string_view needle);

private:
    /// The sums over a task's files. They are made anew only after one of the files has changed,
    /// because adding up a million compactions at every refresh would be felt.
    struct Totals {
        std::vector<std::uint64_t> revisions;  ///< Of the files' states, in their order.
        std::int64_t compactionCount = 0;
        std::optional<ORVCompactionStatus> signalledStatus;  ///< Of the newest file with a signal.
        std::shared_ptr<const ORVHistory> history;           ///< Null unless histories are kept.
    };

    /// The working folder that the first line of a file names, and the file that it was read from.
    struct WorkingFolder {
        std::uint64_t fileNumber = 0;
        ORVFileDate modifiedAt;
        bool isFinal = false;  ///< The line has ended, or is longer than any that is read.
        std::optional<std::string> path;
    };

    // Snapshots (snapshots.cpp)
    const Totals& totalsOfTask(const std::vector<std::string>& urls, std::string_view threadID);
    Totals sumOfFiles(const std::vector<std::string>& urls) const;
    std::optional<ORVSessionSnapshot> readFile(const std::string& url, ORVErrorSlot* error);
    std::optional<ORVSessionSnapshot> readTask(const std::vector<std::string>& urls,
                                               std::string_view threadID, ORVErrorSlot* error);

    // Discovery (discovery.cpp)
    bool walkSessionFiles(std::string_view threadID, const ORVFiles::FileVisitor& visit,
                          ORVErrorSlot* error);
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
    std::size_t indexOfLastUsage(std::span<const std::string_view> lines);
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
    /// Empty. A file's pending line borrows its memory while the file is read, so that reading many
    /// files does not allocate for each.
    ORVByteBuffer spareLine_;

    /// By path. An entry is made anew when another file takes the path.
    std::unordered_map<std::string, ORVSessionParseState> states_;
    std::uint64_t lastRevision_ = 0;
    std::size_t eventsPerFile_ = 0;

    std::map<std::string, Totals, std::less<>> totals_;  ///< By thread identifier.

    std::unordered_map<std::string, WorkingFolder> workingFolders_;  ///< By the file's path.

    std::map<std::string, std::string> titleIndex_;
    std::optional<ORVFileDate> titleIndexModifiedAt_;
    bool titlesAreFinal_ = false;

    /// The result of a search for a task's files.
    struct Search {
        std::vector<std::string> urls;  ///< Oldest first; never empty.
        /// The date that the newest file's folder had right after the search.
        std::optional<ORVFileDate> directoryModifiedAt;
        ORVClock::TimePoint searchedAt;
    };
    /// The last search for each thread identifier, in the caller's spelling. A search that finds
    /// files makes an entry, and one that finds none removes it.
    std::map<std::string, Search, std::less<>> searches_;
};
