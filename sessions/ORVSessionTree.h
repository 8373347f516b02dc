#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"

/// A folder or a file that could not be read, and why.
struct ORVUnreadable {
    std::string path;
    ORVError error;
    bool isFolder = false;
};

/// A task: all session files whose names hold its identifier.
struct ORVTask {
    /// The identifier as the newest file's name writes it. A file whose name holds none is a task
    /// by itself, and its whole name stands here.
    std::string threadID;
    /// Oldest first, equal dates by path; never empty. Valid until the tree is refreshed.
    std::vector<const ORVWalkedFile*> files;

    const ORVWalkedFile& newestFile() const { return *files.back(); }
};

/// All session files below a folder, and what has become of them since the last look.
///
/// The first refresh walks every folder. Each later one asks the folders for their dates, which
/// tell that names came or went, and reads those that have changed. That a file has grown only its
/// own date tells: files written within the last minute and files named by lookAtEveryTime are
/// asked at every refresh. Of the others the newest 5,000 are asked in turn, so that after five
/// refreshes each was asked. The rest, and files of which the system tells when they are written,
/// take fifteen. One thread at a time uses the tree.
class ORVSessionTree {
public:
    /// `files` and `clock` must outlive the tree.
    ORVSessionTree(ORVFiles& files, const ORVClock& clock, std::string folder)
        : files_(files), clock_(clock), root_(std::move(folder)) {}

    /// What has become of a file. A file that is renamed vanishes and appears.
    struct Change {
        enum class Kind { appeared, changed, vanished };
        Kind kind;
        const ORVWalkedFile* file;  ///< As it is by the end of the refresh; as it was, if vanished.
    };

    /// Brings the picture up to date. Returns false, with the system's error, when the folder
    /// cannot be opened; then there are no files.
    bool refresh(ORVErrorSlot* error);

    /// Names the files to ask for their dates at every refresh, in place of those named before.
    void lookAtEveryTime(std::set<std::string> paths) { namedPaths_ = std::move(paths); }

    /// What the last refresh noticed, in order; one file may occur several times. Valid until the
    /// next refresh.
    const std::vector<Change>& changes() const { return changes_; }

    std::size_t fileCount() const { return fileCount_; }

    /// Visits every file, folder by folder. A file keeps its address until it vanishes.
    void forEachFile(const std::function<void(const ORVWalkedFile&)>& visit) const;

    /// Returns the folders, and the files whose dates, the last look at them could not read. What
    /// vanished while it was looked at is none of them.
    std::vector<ORVUnreadable> unreadable() const;

    /// Forgets everything; the next refresh walks every folder.
    void forgetAll();

private:
    using Files = std::vector<std::unique_ptr<ORVWalkedFile>>;

    struct Folder {
        /// What the folder's status was right before it was read; none when it must be read again.
        std::optional<ORVItemStatus> seen;
        ORVClock::TimePoint noticedAt;  ///< When that status was first met.
        bool isSettled = false;  ///< Whether a further change would have given it another status.
        bool isWatched = false;  ///< Whether the system tells what is written in it.
        bool isAskedOften = false;
        Files files;  ///< By path.
        std::vector<ORVUnreadable> unreadable;
    };
    using Folders = std::map<std::string, Folder>;

    /// How far the files have been asked for their dates in turn.
    struct Turn {
        std::string folder;
        std::size_t index = 0;  ///< Of the folder's next file.
    };

    // Which files there are (tree_folders.cpp)
    void lookAtFolders(const ORVOpenFolder& root);
    void readFolder(const std::string& path, Folder& folder);
    void takeFiles(Folder& folder, Files found);
    void forgetBelow(const std::string& path);
    void forgetFilesOf(Folders::value_type& entry);
    std::unique_ptr<ORVOpenFolder> openFolder(const std::string& path, ORVErrorSlot* error);
    const char* pathBelowRoot(const std::string& path) const;

    // When they were written (tree_dates.cpp)
    void lookAtWrittenFiles(const ORVOpenFolder& root);
    void chooseFoldersToAskOften();
    void lookAtFilesInTurn(Turn& turn, bool isOften, std::size_t refreshes);
    std::size_t lookAtFilesOf(Folders::value_type& entry, std::size_t& index, std::size_t limit);
    void lookAtFile(const ORVOpenFolder& root, const std::string& path);
    void take(Folder& folder, ORVWalkedFile& file, const std::optional<ORVItemStatus>& status);
    void update(ORVWalkedFile& file, ORVFileDate modifiedAt, std::uint64_t fileIdentifier,
                std::uint64_t size);
    void note(Change::Kind kind, const ORVWalkedFile& file);

    ORVFiles& files_;
    const ORVClock& clock_;
    const std::string root_;
    ORVClock::TimePoint now_;  ///< When the last refresh began.
    ORVErrorSlot rootError_;   ///< Why the root cannot be opened, though it exists.
    /// By path. A folder stands before those in it, so that it is looked at before them.
    Folders folders_;
    std::size_t fileCount_ = 0;
    std::unique_ptr<ORVFolderWatch> watch_;  ///< From the second refresh on, where there is one.
    std::set<std::string> namedPaths_;
    std::map<std::string, ORVClock::TimePoint> writtenLately_;  ///< By path, when it was noticed.
    Turn oftenTurn_;
    Turn seldomTurn_;
    std::vector<Change> changes_;
    Files vanished_;  ///< Those that `changes_` names.
};
