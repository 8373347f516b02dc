#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
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

/// All session files below a folder, and what has become of them since the last look.
///
/// The first refresh walks every folder. Each later one asks the folders for their dates, which
/// tell that names came or went, and reads those that have changed. That a file has grown only its
/// own date tells: files written within the last minute and files named by lookAtEveryTime are
/// asked at every refresh, the others in turn, so that after five refreshes each was asked. Where
/// the system tells what is written, the others are asked more rarely. One thread at a time uses
/// the tree.
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
    void lookAtEveryTime(std::set<std::string> paths) { watchedPaths_ = std::move(paths); }

    /// What the last refresh noticed, in order; one file may occur several times. Valid until the
    /// next refresh.
    const std::vector<Change>& changes() const { return changes_; }

    std::size_t fileCount() const { return fileCount_; }

    /// Visits every file, folder by folder. A file keeps its address until it vanishes.
    void forEachFile(const std::function<void(const ORVWalkedFile&)>& visit) const;

    /// Returns the folders and files that the last look at them could not read, by path. What
    /// vanished while it was looked at is none of them.
    std::vector<ORVUnreadable> unreadable() const;

    /// Forgets everything; the next refresh walks every folder.
    void forgetAll();

private:
};
