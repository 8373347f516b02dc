#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVFadingTable.h"

/// The errors that the program creates itself. Every other error comes unchanged from the system.
namespace sessions {

inline constexpr char kErrorDomain[] = "Orvellan";

enum ORVErrorCode : std::int64_t {
    ORVErrorSessionsDirectoryMissing = 1,  ///< The sessions folder cannot be walked.
    ORVErrorThreadSessionMissing = 2,      ///< The task has no session file.
};

inline ORVError sessionsDirectoryMissing() {
    return {kErrorDomain, ORVErrorSessionsDirectoryMissing, "没有找到 Codex 会话目录"};
}

inline ORVError threadSessionMissing() {
    return {kErrorDomain, ORVErrorThreadSessionMissing, "没有找到所选 Codex 任务的会话文件"};
}

}  // namespace sessions

/// Finds session files by their names, kinds and dates, without opening any.
class ORVSessionSearch {
public:
    /// `sessionsFolder` is the folder below which all session files stand. `files` and `clock` must
    /// outlive the search.
    ORVSessionSearch(ORVFiles& files, const ORVClock& clock, std::string sessionsFolder)
        : files_(files), clock_(clock), sessionsFolder_(std::move(sessionsFolder)) {}

    const std::string& sessionsFolder() const { return sessionsFolder_; }

    /// Visits the session files whose names hold the identifier, letter case disregarded, and all
    /// of them for "". Returns false, with an error, when the sessions folder cannot be walked.
    bool walk(std::string_view threadID, const ORVFiles::FileVisitor& visit, ORVErrorSlot* error);

    /// Returns the session file with the latest modification date; among equal dates, the one that
    /// the walk met first. Returns none, without an error, when there is no session file.
    std::optional<std::string> latestFile(ORVErrorSlot* error);

    /// Returns every session file whose name contains the identifier, letter case disregarded:
    /// oldest first, equal dates by path. The list is empty, without an error, when there is no
    /// such file. An answer is kept for ten seconds while the newest file's folder keeps its date.
    std::vector<std::string> filesOfTask(std::string_view threadID, ORVErrorSlot* error);

private:
    /// The result of a search for a task's files.
    struct Search {
        std::vector<std::string> paths;  ///< Oldest first; never empty.
        /// The date that the newest file's folder had right after the search.
        std::optional<ORVFileDate> folderModifiedAt;
        ORVClock::TimePoint searchedAt;
    };

    bool stillHolds(const Search& search);
    std::vector<std::string> searchFiles(std::string_view threadID, ORVErrorSlot* error);
    std::optional<ORVFileDate> dateOfFolderHolding(const std::string& path);

    ORVFiles& files_;
    const ORVClock& clock_;
    const std::string sessionsFolder_;
    /// The last search for each thread identifier, in the caller's spelling. A search that finds
    /// files makes an entry, and one that finds none removes it.
    ORVFadingTable<Search> searches_;
};
