// When the session files were written. A growing file changes no folder, so that its own date must
// be asked for. To ask for all of them takes half the time of a walk.
// Tests: tests/sessions/session_tree_test.cpp.

#include <algorithm>

#include "sessions/ORVSessionTree.h"
#include "text/bytes.h"

namespace {

/// Whoever is being written was written a moment ago: for so long a file is asked at every refresh.
constexpr std::chrono::minutes kLately(1);

/// At a refresh every two seconds each file is asked within ten seconds, or within half a minute.
constexpr std::size_t kRefreshesIfOften = 5;
constexpr std::size_t kRefreshesIfSeldom = 15;

/// A file costs two thirds of what a walk costs for it, so that a fifth of very many files would
/// take more than a tenth of a walk. Folders are named by their days: the newest files come last.
constexpr std::size_t kNewest = 5'000;

/// So few files are asked at every refresh, because it costs nothing that could be felt.
constexpr std::size_t kLeast = 64;

bool isLately(ORVClock::TimePoint time, ORVClock::TimePoint now) {
    return std::chrono::abs(now - time) <= kLately;
}

bool isLately(const ORVFileDate& date, ORVClock::TimePoint now) {
    using std::chrono::duration_cast, std::chrono::seconds;
    const auto distance = std::chrono::seconds(kLately).count();
    const auto present = duration_cast<seconds>(now.time_since_epoch()).count();
    return date.seconds >= present - distance && date.seconds <= present + distance;
}

}  // namespace

void ORVSessionTree::lookAtWrittenFiles(const ORVOpenFolder& root) {
    std::set<std::string> paths;
    if (!watch_) {
        watch_ = files_.makeFolderWatch();
    } else if (!watch_->visitChanges([&](const std::string& path) { paths.insert(path); })) {
        for (auto& [path, folder] : folders_) {
            folder.isWatched = false;
        }
    }
    chooseFoldersToAskOften();
    std::erase_if(writtenLately_, [&](const auto& entry) { return !isLately(entry.second, now_); });
    for (const auto& [path, noticedAt] : writtenLately_) {
        paths.insert(path);
    }
    for (const std::string& path : paths) {
        lookAtFile(root, path);
    }
    for (const std::string& path : namedPaths_) {
        if (!paths.contains(path)) {
            lookAtFile(root, path);
        }
    }
    lookAtFilesInTurn(oftenTurn_, true, kRefreshesIfOften);
    lookAtFilesInTurn(seldomTurn_, false, kRefreshesIfSeldom);
}

void ORVSessionTree::chooseFoldersToAskOften() {
    std::size_t newest = 0;
    for (auto at = folders_.rbegin(); at != folders_.rend(); ++at) {
        Folder& folder = at->second;
        folder.isAskedOften = !folder.isWatched && newest < kNewest;
        newest += folder.isAskedOften ? folder.files.size() : 0;
    }
}

void ORVSessionTree::lookAtFile(const ORVOpenFolder& root, const std::string& path) {
    const auto folder = folders_.find(text::folderOf(path));
    if (folder == folders_.end()) {
        return;
    }
    auto& files = folder->second.files;
    const auto file = std::lower_bound(
        files.begin(), files.end(), path,
        [](const auto& known, const std::string& wanted) { return known->path < wanted; });
    if (file != files.end() && (*file)->path == path) {
        take(folder->second, **file, root.statusOf(pathBelowRoot(path), nullptr));
    }
}

/// Goes on where the last call stopped, so far that as many calls reach each of the files in the
/// folders that are asked often, or in those that are not.
void ORVSessionTree::lookAtFilesInTurn(Turn& turn, bool isOften, std::size_t refreshes) {
    std::size_t total = 0;
    for (const auto& [path, folder] : folders_) {
        total += folder.isAskedOften == isOften ? folder.files.size() : 0;
    }
    auto at = folders_.lower_bound(turn.folder);
    if (at == folders_.end() || at->first != turn.folder) {
        turn.index = 0;
    }
    std::size_t left = std::min(total, std::max(kLeast, (total + refreshes - 1) / refreshes));
    while (left > 0) {
        at = at == folders_.end() ? folders_.begin() : at;
        if (at->second.isAskedOften == isOften) {
            left -= std::min(left, lookAtFilesOf(*at, turn.index, left));
            if (turn.index < at->second.files.size()) {
                break;
            }
        }
        turn.index = 0;
        ++at;
    }
    turn.folder = at == folders_.end() ? "" : at->first;
}

/// Looks at as many files of a folder, from the index on, and returns at how many. A folder that
/// begins to be watched is looked at as a whole: what happens later, the watch tells.
std::size_t ORVSessionTree::lookAtFilesOf(Folders::value_type& entry, std::size_t& index,
                                          std::size_t limit) {
    auto& [path, folder] = entry;
    const std::size_t count = folder.files.size();
    if (!folder.isWatched && watch_ && index == 0 && count > 0 && watch_->watch(path)) {
        folder.isWatched = true;
        limit = count;
    }
    const std::size_t first = std::min(index, count);
    index = first + std::min(limit, count - first);
    const auto opened = first < index ? openFolder(path, nullptr) : nullptr;
    for (std::size_t i = first; i < index; ++i) {
        ORVWalkedFile& file = *folder.files[i];
        const char* const name = file.path.c_str() + path.size() + 1;
        take(folder, file, opened ? opened->statusOf(name, nullptr) : std::nullopt);
    }
    return index - first;
}

void ORVSessionTree::take(Folder& folder, ORVWalkedFile& file,
                          const std::optional<ORVItemStatus>& status) {
    if (!status || status->kind != ORVItemStatus::Kind::file) {
        folder.seen.reset();  // The next refresh reads the names again.
    } else {
        update(file, status->modifiedAt, status->fileIdentifier, status->size);
    }
}

void ORVSessionTree::update(ORVWalkedFile& file, ORVFileDate modifiedAt,
                            std::uint64_t fileIdentifier, std::uint64_t size) {
    if (file.modifiedAt != modifiedAt || file.fileIdentifier != fileIdentifier ||
        file.size != size) {
        file.modifiedAt = modifiedAt;
        file.fileIdentifier = fileIdentifier;
        file.size = size;
        note(Change::Kind::changed, file);
    }
}

void ORVSessionTree::note(Change::Kind kind, const ORVWalkedFile& file) {
    changes_.push_back({kind, &file});
    if (kind == Change::Kind::vanished) {
        --fileCount_;
    } else if (kind == Change::Kind::changed || isLately(file.modifiedAt, now_)) {
        writtenLately_[file.path] = now_;
    }
    fileCount_ += kind == Change::Kind::appeared ? 1 : 0;
}
