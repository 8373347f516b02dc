// Finds session files by their names, kinds and dates, without opening any. The result of a search
// for a task is kept for ten seconds, so that most refreshes of the task in view walk no folder.
// Tests: tests/sessions/discovery_test.cpp.

#include <algorithm>
#include <chrono>
#include <tuple>

#include "platform/home_folder.h"
#include "sessions/ORVCodexSessionSource.h"
#include "sessions/errors.h"
#include "text/identifiers.h"
#include "text/paths.h"
#include "text/unicode.h"

namespace {

constexpr std::chrono::seconds kSearchReuse(10);
constexpr std::string_view kExtension = "jsonl";

}  // namespace

ORVCodexSessionSource::ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock)
    : ORVCodexSessionSource(files, clock, defaultCodexHome()) {}

ORVCodexSessionSource::ORVCodexSessionSource(ORVFiles& files, const ORVClock& clock,
                                             std::string codexHome)
    : files_(files), clock_(clock), codexHome_(std::move(codexHome)) {}

std::string ORVCodexSessionSource::defaultCodexHome() {
    return platform::homeFolder() + "/.codex";
}

std::string ORVCodexSessionSource::sessionsFolder() const {
    return codexHome_ + "/sessions";
}

/// Visits the session files whose names hold the identifier, letter case disregarded, and all of
/// them for "". Returns false, with an error, when the sessions folder cannot be walked.
bool ORVCodexSessionSource::walkSessionFiles(std::string_view threadID,
                                             const ORVFiles::FileVisitor& visit,
                                             ORVErrorSlot* error) {
    const bool isWalked = files_.walk(
        sessionsFolder(),
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

std::optional<std::string> ORVCodexSessionSource::latestSessionURLWithError(ORVErrorSlot* error) {
    std::optional<ORVWalkedFile> latest;
    const auto keepLatest = [&](ORVWalkedFile&& file) {
        if (!latest || file.modifiedAt > latest->modifiedAt) {
            latest = std::move(file);
        }
    };
    const bool isWalked = walkSessionFiles("", keepLatest, error);
    return isWalked && latest ? std::optional(std::move(latest->path)) : std::nullopt;
}

std::vector<std::string> ORVCodexSessionSource::sessionURLsForThreadID(std::string_view threadID,
                                                                       ORVErrorSlot* error) {
    if (threadID.empty()) {
        return {};
    }
    const std::string key(threadID);
    return cachedSearchHolds(key) ? searches_[key].urls : searchSessionURLs(key, error);
}

bool ORVCodexSessionSource::cachedSearchHolds(const std::string& threadID) {
    const auto found = searches_.find(threadID);
    if (found == searches_.end()) {
        return false;
    }
    const Search& search = found->second;
    const std::string& newest = search.urls.back();
    if (!files_.itemExists(newest)) {
        return false;
    }
    const auto directoryDate = dateOfFolderHolding(newest);
    // A clock that was set back makes the age negative, which counts as young.
    return directoryDate && search.directoryModifiedAt == directoryDate &&
           clock_.now() - search.searchedAt < kSearchReuse;
}

std::vector<std::string> ORVCodexSessionSource::searchSessionURLs(const std::string& threadID,
                                                                  ORVErrorSlot* error) {
    std::vector<ORVWalkedFile> candidates;
    const auto take = [&](ORVWalkedFile&& file) { candidates.push_back(std::move(file)); };
    if (!walkSessionFiles(threadID, take, error)) {
        return {};
    }
    if (candidates.empty()) {
        searches_.erase(threadID);
        return {};
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const ORVWalkedFile& a, const ORVWalkedFile& b) {
                  return std::tie(a.modifiedAt, a.path) < std::tie(b.modifiedAt, b.path);
              });
    Search search;
    for (ORVWalkedFile& candidate : candidates) {
        search.urls.push_back(std::move(candidate.path));
    }
    search.directoryModifiedAt = dateOfFolderHolding(search.urls.back());
    search.searchedAt = clock_.now();
    return searches_.insert_or_assign(threadID, std::move(search)).first->second.urls;
}

std::optional<ORVFileDate> ORVCodexSessionSource::dateOfFolderHolding(const std::string& url) {
    const auto attributes = files_.attributesOfItem(text::folderOf(url), nullptr);
    return attributes ? attributes->modifiedAt : std::nullopt;
}

std::optional<std::string> ORVCodexSessionSource::sessionURLForThreadID(std::string_view threadID,
                                                                        ORVErrorSlot* error) {
    std::vector<std::string> urls = sessionURLsForThreadID(threadID, error);
    return urls.empty() ? std::nullopt : std::optional(std::move(urls.back()));
}

std::optional<std::string> ORVCodexSessionSource::threadIDFromSessionURL(std::string_view url) {
    const std::string_view name = text::lastPathComponent(url);
    for (std::size_t i = 0; i + text::kUUIDLength <= name.size(); ++i) {
        const std::string_view candidate = name.substr(i, text::kUUIDLength);
        if (text::isUUID(candidate)) {
            return std::string(candidate);
        }
    }
    return std::nullopt;
}
