// Finds session files. The result of a search for a task is kept for ten seconds, so that most
// refreshes of the task in view walk no folder. Tests: tests/sessions/discovery_test.cpp.

#include <algorithm>
#include <chrono>
#include <tuple>

#include "sessions/ORVSessionSearch.h"
#include "text/bytes.h"
#include "text/unicode.h"

namespace {

constexpr std::chrono::seconds kSearchReuse(10);
constexpr std::string_view kExtension = "jsonl";

}  // namespace

bool ORVSessionSearch::walk(std::string_view threadID, const ORVFiles::FileVisitor& visit,
                            ORVErrorSlot* error) {
    const bool isWalked = files_.walk(
        sessionsFolder_,
        [&](std::string_view name) {
            return text::hasExtension(name, kExtension) &&
                   (threadID.empty() || text::containsIgnoringCase(name, threadID));
        },
        visit, [](ORVError&&) {});  // A folder that cannot be read counts as empty.
    if (!isWalked) {
        storeError(error, sessions::sessionsDirectoryMissing());
    }
    return isWalked;
}

std::optional<std::string> ORVSessionSearch::latestFile(ORVErrorSlot* error) {
    std::optional<ORVWalkedFile> latest;
    const auto keepLatest = [&](ORVWalkedFile&& file) {
        if (!latest || file.modifiedAt > latest->modifiedAt) {
            latest = std::move(file);
        }
    };
    const bool isWalked = walk("", keepLatest, error);
    return isWalked && latest ? std::optional(std::move(latest->path)) : std::nullopt;
}

std::vector<std::string> ORVSessionSearch::filesOfTask(std::string_view threadID,
                                                       ORVErrorSlot* error) {
    if (threadID.empty()) {
        return {};
    }
    searches_.age(clock_.now());
    const Search* const last = searches_.find(threadID);
    return last && stillHolds(*last) ? last->paths : searchFiles(threadID, error);
}

bool ORVSessionSearch::stillHolds(const Search& search) {
    const std::string& newest = search.paths.back();
    if (!files_.itemExists(newest)) {
        return false;
    }
    const auto folderDate = dateOfFolderHolding(newest);
    // A clock that was set back makes the age negative, which counts as young.
    return folderDate && search.folderModifiedAt == folderDate &&
           clock_.now() - search.searchedAt < kSearchReuse;
}

std::vector<std::string> ORVSessionSearch::searchFiles(std::string_view threadID,
                                                       ORVErrorSlot* error) {
    std::vector<ORVWalkedFile> found;
    const auto take = [&](ORVWalkedFile&& file) { found.push_back(std::move(file)); };
    if (!walk(threadID, take, error)) {
        return {};
    }
    if (found.empty()) {
        searches_.erase(threadID);
        return {};
    }
    std::sort(found.begin(), found.end(), [](const ORVWalkedFile& a, const ORVWalkedFile& b) {
        return std::tie(a.modifiedAt, a.path) < std::tie(b.modifiedAt, b.path);
    });
    Search search;
    for (ORVWalkedFile& file : found) {
        search.paths.push_back(std::move(file.path));
    }
    search.folderModifiedAt = dateOfFolderHolding(search.paths.back());
    search.searchedAt = clock_.now();
    return (searches_[threadID] = std::move(search)).paths;
}

std::optional<ORVFileDate> ORVSessionSearch::dateOfFolderHolding(const std::string& path) {
    const auto attributes = files_.attributesOfItem(text::folderOf(path), nullptr);
    return attributes ? attributes->modifiedAt : std::nullopt;
}
