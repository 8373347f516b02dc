// Which session files there are: reads the folders whose dates say that names came or went.
// Tests: tests/sessions/session_tree_test.cpp, which compares the picture with a full walk.

#include <algorithm>
#include <cerrno>
#include <new>

#include "sessions/ORVSessionTree.h"
#include "text/bytes.h"

namespace {

constexpr std::string_view kExtension = "jsonl";

/// No file system counts time in coarser steps than two seconds: after this time a further change
/// of a folder gives it another date.
constexpr std::chrono::seconds kDateSteps(3);

/// A date that lies this far back is not of the present step, whatever the clocks of a file server
/// and of this machine differ by.
constexpr std::chrono::hours kClockDifference(1);

bool isSettled(const std::optional<ORVItemStatus>& status, ORVClock::TimePoint noticedAt,
               ORVClock::TimePoint now) {
    using std::chrono::duration_cast, std::chrono::seconds;
    const auto longAgo = (noticedAt - kClockDifference).time_since_epoch();
    return std::chrono::abs(now - noticedAt) > kDateSteps ||
           (status && status->changedAt.seconds < duration_cast<seconds>(longAgo).count());
}

/// Whether an item is not there any more, or is no folder any more.
bool isGone(const ORVError& error) {
    return error.code == ENOENT || error.code == ENOTDIR;
}

}  // namespace

bool ORVSessionTree::refresh(ORVErrorSlot* error) {
    try {
        now_ = clock_.now();
        changes_.clear();
        vanished_.clear();
        rootError_.reset();
        const bool isFirst = folders_.empty();
        const auto root = openFolder(root_, &rootError_);
        if (!root) {
            storeError(error, *rootError_);
            forgetBelow(root_);
            for (auto& entry : folders_) {
                forgetFilesOf(entry);
            }
            folders_.clear();
            return false;
        }
        folders_.try_emplace(root_);
        lookAtFolders(*root);
        if (!isFirst) {
            lookAtWrittenFiles(*root);
        }
        return true;
    } catch (const std::bad_alloc&) {
        forgetAll();
        throw;
    }
}

void ORVSessionTree::forgetAll() {
    folders_.clear();
    fileCount_ = 0;
    watch_.reset();
    writtenLately_.clear();
    changes_.clear();
    vanished_.clear();
}

std::unique_ptr<ORVOpenFolder> ORVSessionTree::openFolder(const std::string& path,
                                                          ORVErrorSlot* error) {
    const bool isRoot = path.size() == root_.size();
    return files_.openFolder(path, isRoot ? ORVFiles::Links::followed : ORVFiles::Links::refused,
                             error);
}

const char* ORVSessionTree::pathBelowRoot(const std::string& path) const {
    return path.size() == root_.size() ? "." : path.c_str() + root_.size() + 1;
}

/// Folders that a read adds come later in the order of paths, so that they are looked at, too.
void ORVSessionTree::lookAtFolders(const ORVOpenFolder& root) {
    for (auto at = folders_.begin(); at != folders_.end();) {
        Folder& folder = at->second;
        ORVErrorSlot error;
        const auto status = root.statusOf(pathBelowRoot(at->first), &error);
        if (status ? status->kind != ORVItemStatus::Kind::folder : isGone(*error)) {
            forgetBelow(at->first);
            forgetFilesOf(*at);
            at = folders_.erase(at);
            continue;
        }
        const bool isSame = folder.seen && folder.seen == status;
        if (!isSame) {
            folder.isWatched = false;  // Another folder may have taken its place and number.
            folder.noticedAt = now_;
        }
        if (!isSame || !folder.isSettled) {
            folder.isSettled = isSettled(status, folder.noticedAt, now_);
            folder.seen = status;
            readFolder(at->first, folder);
        }
        ++at;
    }
}

void ORVSessionTree::readFolder(const std::string& path, Folder& folder) {
    const std::string prefix = path + '/';
    Files found;
    folder.unreadable.clear();
    ORVErrorSlot error;
    if (const auto opened = openFolder(path, &error)) {
        opened->readItems(
            [](std::string_view name) { return text::hasExtension(name, kExtension); },
            [&](const char* name, const ORVItemStatus& status) {
                found.push_back(std::make_unique<ORVWalkedFile>(ORVWalkedFile{
                    prefix + name, status.modifiedAt, status.fileIdentifier, status.size}));
            },
            [&](const char* name) { folders_.try_emplace(prefix + name); },
            [&](const std::string& name, ORVError&& why) {
                const bool isFolder = name.empty();
                folder.unreadable.push_back(
                    {isFolder ? path : prefix + name, std::move(why), isFolder});
            });
    } else {
        if (!isGone(*error)) {
            folder.unreadable.push_back({path, std::move(*error), true});
        }
        folder.seen.reset();
        forgetBelow(path);
    }
    if (!folder.unreadable.empty()) {
        folder.seen.reset();
    }
    takeFiles(folder, std::move(found));
}

/// Merges what a read has found into the files of the folder.
void ORVSessionTree::takeFiles(Folder& folder, Files found) {
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a->path < b->path; });
    auto old = folder.files.begin();
    const auto dropBefore = [&](const std::string* path) {
        for (; old != folder.files.end() && (!path || (*old)->path < *path); ++old) {
            note(Change::Kind::vanished, **old);
            vanished_.push_back(std::move(*old));
        }
    };
    for (auto& file : found) {
        dropBefore(&file->path);
        if (old != folder.files.end() && (*old)->path == file->path) {
            update(**old, file->modifiedAt, file->fileIdentifier, file->size);
            file = std::move(*old++);
        } else {
            note(Change::Kind::appeared, *file);
        }
    }
    dropBefore(nullptr);
    folder.files = std::move(found);
}

/// Forgets the folders below this one; it stays, with its files.
void ORVSessionTree::forgetBelow(const std::string& path) {
    const auto first = folders_.lower_bound(path + '/');
    const auto last = folders_.lower_bound(path + '0');  // The character after the slash.
    for (auto at = first; at != last; ++at) {
        forgetFilesOf(*at);
    }
    folders_.erase(first, last);
}

void ORVSessionTree::forgetFilesOf(Folders::value_type& entry) {
    takeFiles(entry.second, {});
    if (watch_) {
        watch_->forget(entry.first);
    }
}

void ORVSessionTree::forEachFile(const std::function<void(const ORVWalkedFile&)>& visit) const {
    for (const auto& [path, folder] : folders_) {
        for (const auto& file : folder.files) {
            visit(*file);
        }
    }
}

std::vector<ORVUnreadable> ORVSessionTree::unreadable() const {
    std::vector<ORVUnreadable> all;
    if (rootError_ && !isGone(*rootError_)) {
        all.push_back({root_, *rootError_, true});
    }
    for (const auto& [path, folder] : folders_) {
        all.insert(all.end(), folder.unreadable.begin(), folder.unreadable.end());
    }
    return all;
}
