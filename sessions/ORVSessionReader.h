#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ORVFollowedFile.h"
#include "sessions/ORVFadingTable.h"
#include "sessions/ORVSessionParseState.h"

/// The words that select lines of a session file. A line without any of them cannot change what is
/// wanted; it is passed over without being cut out or parsed.
namespace sessions {

inline constexpr std::string_view kCompact = "compact";
inline constexpr std::string_view kTokenCount = "token_count";
inline constexpr std::string_view kTurnContext = "turn_context";

/// The rare bytes, "m…c" and "k…_", are those that were fastest on session files.
inline constexpr ORVMarker kMarkers[] = {{kCompact, 2, 5}, {kTokenCount, 2, 5}};
inline constexpr ORVMarker kMarkersWithFacts[] = {
    {kCompact, 2, 5}, {kTokenCount, 2, 5}, {kTurnContext, 4, 10}};

}  // namespace sessions

/// What is wanted of every session file beside its figures.
struct ORVSessionWants {
    /// The longest history of a file; 0 for none. When more happens in a file, neighbouring usages
    /// are merged, but for those right before and after a compaction. If that is not enough,
    /// compactions are left out.
    std::size_t eventsPerFile = 0;
    bool agentFacts = false;  ///< Whether to look for what the agent says beside the figures.
};

/// Follows session files as they grow and keeps what the records of each have said.
///
/// A call that fails keeps what it had read, unless memory ran out. One thread at a time uses the
/// reader.
class ORVSessionReader {
public:
    /// `files` and `clock` must outlive the reader.
    ORVSessionReader(ORVFiles& files, const ORVClock& clock, ORVSessionWants wants);

    const ORVSessionWants& wants() const { return wants_; }

    // Reading (reading.cpp)

    /// A file that has been read up to its present end.
    struct File {
        const ORVSessionParseState& state;  ///< Valid until files are forgotten.
        ORVFileDate modifiedAt;
    };

    /// Reads on in a file. Returns none when the file cannot be read, and, without an error, when
    /// the file system tells no size or no date of it.
    std::optional<File> readFile(const std::string& path, ORVReadingMemory& memory,
                                 ORVErrorSlot* error);

    /// Does the same up to the size that a walk has found, and does not ask for it again.
    std::optional<File> readFile(const ORVWalkedFile* file, ORVReadingMemory& memory,
                                 ORVErrorSlot* error);

    /// What readAhead calls, by several threads at once but for `progress`. Each may be empty.
    struct ReadingAhead {
        /// Is shown the bytes that a file begins with, and returns whether to read the file.
        std::function<bool(const ORVWalkedFile& file, std::string_view bytes, ORVJSONReader& json)>
            opening;
        std::function<void(std::size_t done)> progress;  ///< Is told how many files have been read.
    };

    /// Reads on in these files on all processors, up to the sizes that the walk has found, so that
    /// readFile finds nothing new in them. A file that cannot be read is left to readFile.
    /// Throws std::bad_alloc when memory runs out.
    void readAhead(std::span<const ORVWalkedFile* const> files, const ReadingAhead& calls);

    /// Forgets the figures of files that nobody has asked for in a while.
    void forgetUnaskedFiles(ORVClock::TimePoint now) { states_.age(now); }

    void forgetFiles() { states_.clear(); }
    void forgetFile(const std::string& path) { states_.erase(path); }

    /// Reads what the file holds between the state's offset and `fileSize`, and interprets the
    /// complete lines in it. Returns false, with the system's error, when the file cannot be opened
    /// or read. A file that turns out to be shorter is no failure: the next call tries again.
    bool updateState(ORVSessionParseState& state, const std::string& path, std::uint64_t fileSize,
                     ORVReadingMemory& memory, const ORVFileFollower::Opening& opening,
                     ORVErrorSlot* error) const;

    // Interpretation (interpretation.cpp)

    /// Interprets one line, without its line feed. A line that cannot be understood leaves the
    /// state as it is. text::kReadableBytesBeyond bytes after the line must be readable.
    void consumeLine(std::string_view line, ORVSessionParseState& state, ORVJSONReader& json) const;

    /// Interprets lines in file order, as consumeLine does with each in turn, but faster: a usage
    /// that another one of these lines replaces is not read unless histories are wanted. Also takes
    /// what the agent says beside the figures, if it is wanted.
    void consumeLines(std::span<const std::string_view> lines, ORVSessionParseState& state,
                      ORVJSONReader& json) const;

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

    /// Returns such a number, and none for every other value. 2^63 becomes 2^63 - 1.
    static std::optional<std::int64_t> wholeNumber(const ORVJSONValue& value);

    /// Returns what a token count's payload holds in the place of the window.
    static const ORVJSONValue& windowIn(const ORVJSONValue& payload);

    static bool dataContainsUTF8(std::string_view data, std::string_view needle);

    // What the agent says beside the figures (agent_facts.cpp)

    /// Takes what these lines tell, which are newer than all that is known.
    static void takeFacts(std::span<const std::string_view> lines, ORVRecordedFacts& facts,
                          ORVJSONReader& json);

    /// Returns what the files with these states tell, given oldest first.
    static ORVAgentFacts agentFactsOf(std::span<const ORVSessionParseState* const> files);

    /// Returns the last rate limits in a file (rate_limits.cpp), which has no rate limits when it
    /// tells none. Reads backwards from the file's end, in few steps, and keeps nothing. Returns
    /// none, with the system's error, when the file cannot be read.
    std::optional<ORVRecordedFacts> lastRateLimits(const ORVWalkedFile& file,
                                                   ORVReadingMemory& memory,
                                                   ORVErrorSlot* error) const;

    // Histories (history.cpp)

    /// Returns what happened in the files with these states, given oldest first. A compaction that
    /// stands in several of them occurs once.
    static ORVHistory historyOf(std::span<const ORVSessionParseState* const> files);

private:
    // Reading (reading.cpp)
    std::optional<File> readOn(ORVSessionParseState& state, const std::string& path,
                               const ORVFileAttributes& attributes, ORVReadingMemory& memory,
                               const ORVFileFollower::Opening& opening, ORVErrorSlot* error);

    // Interpretation (interpretation.cpp)
    void consumeFigures(std::span<const std::string_view> lines, ORVSessionParseState& state,
                        ORVJSONReader& json) const;
    std::size_t indexOfLastUsage(std::span<const std::string_view> lines,
                                 ORVJSONReader& json) const;
    static bool consumeCompaction(const std::optional<std::string>& identifier,
                                  ORVSessionParseState& state);
    static bool consumeTokenCount(const ORVJSONValue& payload, ORVSessionParseState& state);

    // Histories (history.cpp)
    void record(const ORVJSONValue& object, std::optional<ORVContextUsage> usage,
                std::string compactionIdentifier, ORVSessionParseState& state) const;

    ORVFiles& files_;
    const ORVSessionWants wants_;
    const ORVFileFollower follower_;
    ORVFadingTable<ORVSessionParseState> states_;  ///< By path.
    std::atomic<std::uint64_t> lastRevision_ = 0;  ///< Files are read by several threads at once.
};
