#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVAgentFacts.h"
#include "sessions/ORVSessionReader.h"
#include "sessions/ORVSessionSearch.h"
#include "sessions/ORVSessionSnapshot.h"
#include "sessions/ORVSessionTree.h"
#include "sessions/ORVTitleIndex.h"

/// The questions that the application asks about an agent's session data, on the refresh queue.
class ORVAgentSessionSource {
public:
    virtual ~ORVAgentSessionSource() = default;

    /// Returns the task of the most recently written session file. Returns none, without an error,
    /// when there is no session file.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> latestSnapshotWithError(
        ORVErrorSlot* error) = 0;

    /// Returns the snapshot of the task with this identifier, summed over all its session files.
    /// Returns none when the task has no file or one of them cannot be read. The slot then holds an
    /// error, unless the reason is that the file system gave no size or no date.
    [[nodiscard]] virtual std::optional<ORVSessionSnapshot> snapshotForThreadID(
        std::string_view threadID, ORVErrorSlot* error) = 0;

    /// Returns the titles of all tasks by thread identifier.
    [[nodiscard]] virtual std::map<std::string, std::string> threadTitles() = 0;
};

/// The session data of the Codex application: finds the files of a task, follows them as they grow,
/// and sums up what their records say.
///
/// A source keeps its place in every file that it has read, until nobody has asked for it for some
/// ten minutes. It locks nothing, so one thread uses it at a time: in the application the refresh
/// queue. A call that fails keeps what it had read, unless memory ran out.
class ORVCodexSessionSource final : public ORVAgentSessionSource {
public:
    /// `files` and `clock` must outlive the source.
    ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock,
                          const std::string& codexHome = defaultCodexHome(),
                          ORVSessionWants wants = {});

    /// Returns the folder ".codex" in the user's home.
    static std::string defaultCodexHome();

    // Snapshots (snapshots.cpp)

    std::optional<ORVSessionSnapshot> latestSnapshotWithError(ORVErrorSlot* error) override;
    std::optional<ORVSessionSnapshot> snapshotForThreadID(std::string_view threadID,
                                                          ORVErrorSlot* error) override;

    /// Reads on in one file and returns its figures alone. Returns none, without an error, when the
    /// file system tells no size or no date of the file.
    std::optional<ORVSessionSnapshot> snapshotForSessionURL(const std::string& path,
                                                            ORVErrorSlot* error);

    /// Returns the figures that snapshotForThreadID returns for the task's identifier, but reads no
    /// further than the files went when they were walked, and takes the title from the last refresh
    /// of the titles: asking again for the dates of each of many tasks would be felt.
    std::optional<ORVSessionSnapshot> snapshotForTask(const ORVTask& task, ORVErrorSlot* error);

    /// Reads on in these files as ORVSessionReader does; snapshotForTask then finds nothing new in
    /// them.
    void readAhead(std::span<const ORVWalkedFile* const> files,
                   const ORVSessionReader::ReadingAhead& calls) {
        forgetUnasked();
        reader_.readAhead(files, calls);
    }

    /// Forgets what was read of every session file.
    void forgetFiles();

    /// Forgets what was read of this task. Whoever asks once about each of many tasks calls this
    /// after each, so that memory does not grow with their number.
    void forget(const ORVTask& task);

    /// Returns what happened in the task from its beginning to its last snapshot, the oldest file's
    /// events first; null when no snapshot was made since forgetFiles, or when histories are not
    /// wanted. A compaction that stands in several files occurs once.
    std::shared_ptr<const ORVHistory> historyForThreadID(std::string_view threadID) const;

    /// Returns what the agent says beside the figures, in the task's newest record of each kind up
    /// to its last snapshot; null when no snapshot was made since forgetFiles, or when it is not
    /// wanted.
    std::shared_ptr<const ORVAgentFacts> agentFactsForThreadID(std::string_view threadID) const;

    /// Returns the account's rate limits (rate_limits.cpp) as the newest of these files' last ones
    /// tells them; none when no file has any. The 20 newest files are looked at, and only at their
    /// ends. A file that is older than the longest window of its rate limits does not count. Of the
    /// others the record with the latest time counts: of its time stamp, or of its file where it
    /// has none that can be read. `unreadable` takes the files that cannot be read.
    std::optional<ORVAccountLimits> accountLimits(std::vector<const ORVWalkedFile*> files,
                                                  std::vector<ORVUnreadable>* unreadable) const;

    // Files

    /// Returns the folder below which all session files stand.
    const std::string& sessionsFolder() const { return search_.sessionsFolder(); }

    // As ORVSessionSearch describes them.
    std::optional<std::string> latestSessionURLWithError(ORVErrorSlot* error) {
        return search_.latestFile(error);
    }
    std::vector<std::string> sessionURLsForThreadID(std::string_view threadID,
                                                    ORVErrorSlot* error) {
        return search_.filesOfTask(threadID, error);
    }

    /// Returns the newest of the task's files; none when it has none. Nothing calls it but tests.
    std::optional<std::string> sessionURLForThreadID(std::string_view threadID,
                                                     ORVErrorSlot* error);

    /// Returns the first part of the file's name that has the form of a thread identifier, in the
    /// letter case in which it stands there.
    static std::optional<std::string> threadIDFromSessionURL(std::string_view path);

    // Titles

    ORVTitleIndex::Titles threadTitles() override;

    /// Returns the path of the file that holds the titles.
    const std::string& titleIndexPath() const { return titles_.path(); }

    /// Returns why that file could not be read; none when it is missing.
    const ORVErrorSlot& titleIndexError() const { return titles_.error(); }

    const std::optional<ORVFileDate>& titleIndexDate() const { return titles_.modifiedAt(); }

    void refreshTitleIndexIfNeeded() { titles_.refreshIfNeeded(); }

    // One file and its lines, as ORVSessionReader describes them; only tests call these.

    bool updateState(ORVSessionParseState& state, const std::string& path, std::uint64_t fileSize,
                     ORVErrorSlot* error) const {
        ORVReadingMemory memory;
        return reader_.updateState(state, path, fileSize, memory, {}, error);
    }
    void consumeLine(std::string_view line, ORVSessionParseState& state) const {
        ORVJSONReader json;
        reader_.consumeLine(line, state, json);
    }
    static constexpr auto isValidCurrentCompactionObject =
        &ORVSessionReader::isValidCurrentCompactionObject;
    static constexpr auto compactionIdentifierForObject =
        &ORVSessionReader::compactionIdentifierForObject;
    static constexpr auto isNonnegativeIntegerNumber =
        &ORVSessionReader::isNonnegativeIntegerNumber;
    static constexpr auto isPositiveIntegerNumber = &ORVSessionReader::isPositiveIntegerNumber;
    static constexpr auto dataContainsUTF8 = &ORVSessionReader::dataContainsUTF8;

private:
    /// The sums over a task's files. They are made anew only after one of the files has changed,
    /// because adding up a million compactions at every refresh would be felt.
    struct Totals {
        std::vector<std::uint64_t> revisions;  ///< Of the files' states, in their order.
        std::int64_t compactionCount = 0;
        std::optional<ORVCompactionStatus> signalledStatus;  ///< Of the newest file with a signal.
        std::shared_ptr<const ORVHistory> history;           ///< Null unless histories are wanted.
        std::shared_ptr<const ORVAgentFacts> agentFacts;     ///< Null unless they are wanted.
    };
    using States = std::vector<const ORVSessionParseState*>;  ///< Of a task's files, oldest first.

    // Snapshots (snapshots.cpp)
    enum class Titles { refreshed, asTheyAre };
    template <typename Files>
    std::optional<ORVSessionSnapshot> snapshotOfFiles(const Files& files, std::string_view threadID,
                                                      Titles titles, ORVErrorSlot* error);
    void forgetUnasked();
    const Totals& totalsOfTask(const States& states, std::string_view threadID);
    Totals sumOf(const States& states) const;

    const ORVClock& clock_;
    ORVSessionSearch search_;
    ORVSessionReader reader_;
    ORVTitleIndex titles_;
    ORVFadingTable<Totals> totals_;  ///< By thread identifier.
};
