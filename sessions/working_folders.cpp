// Which folder a task works in: the first line of a session file says it, once for all. Tasks are
// found by folder from there. Tests: tests/sessions/tasks_test.cpp.

#include <algorithm>
#include <unordered_map>

#include "sessions/ORVCodexSessionSource.h"
#include "text/byte_buffer.h"

namespace {

/// The agent's first lines have some 25 KB: they hold its instructions. A longer one than this
/// tells no folder.
constexpr std::size_t kFirstLineLimitBytes = 1024 * 1024;

/// Most first lines are read with one call.
constexpr std::uint64_t kFirstReadBytes = 32 * 1024;

const ORVJSONShape& firstRecordShape() {
    static const ORVJSONShape kShape{
        "", false, {{"type", true}, {"payload", false, {{"cwd", true}}}}};
    return kShape;
}

std::optional<std::string> workingFolderIn(const ORVJSONValue& record) {
    const std::string& path = record["payload"]["cwd"].text;
    const bool isTold = record["type"].text == "session_meta" && path.starts_with('/');
    return isTold ? std::optional(path) : std::nullopt;
}

/// The length of the holder's path when the folder is the holder itself or lies in it; none
/// otherwise. The root folder holds everything and counts as 0.
std::optional<std::size_t> depthOfHolder(std::string_view holder, std::string_view folder) {
    while (holder.ends_with('/')) {
        holder.remove_suffix(1);
    }
    const bool holds =
        folder.starts_with(holder) &&
        (folder.size() == holder.size() || folder[holder.size()] == '/' || holder.empty());
    return holds ? std::optional(holder.size()) : std::nullopt;
}

/// Compares folders with one folder, each as it is written and as it really is.
class Comparison {
public:
    Comparison(ORVFiles& files, const std::string& folder) : files_(files), folder_(folder) {}

    std::optional<std::size_t> depthOf(const std::string& path) {
        const auto [found, isNew] = depths_.try_emplace(path);
        if (isNew) {
            found->second = depthOfHolder(path, folder_);
            if (const auto real = found->second ? std::nullopt : files_.realPath(path)) {
                found->second = depthOfHolder(*real, folder_);
            }
        }
        return found->second;
    }

private:
    ORVFiles& files_;
    const std::string& folder_;
    std::unordered_map<std::string, std::optional<std::size_t>> depths_;
};

}  // namespace

std::optional<std::string> ORVCodexSessionSource::workingFolderForSessionURL(
    const std::string& url) {
    const auto attributes = files_.attributesOfItem(url, nullptr);
    if (!attributes || !attributes->modifiedAt) {
        return std::nullopt;
    }
    auto path =
        workingFolder(url, attributes->fileNumber.value_or(0), *attributes->modifiedAt).path;
    releaseReadingMemory();
    return path;
}

const ORVCodexSessionSource::WorkingFolder& ORVCodexSessionSource::workingFolder(
    const std::string& url, std::uint64_t fileNumber, ORVFileDate modifiedAt) {
    WorkingFolder& known = workingFolders_[url];
    const bool isSameFile = known.fileNumber == fileNumber;
    // A first line that has not ended is looked at again when the file has changed.
    if (!isSameFile || (!known.isFinal && known.modifiedAt != modifiedAt)) {
        known = readWorkingFolder(url);
        known.fileNumber = fileNumber;
        known.modifiedAt = modifiedAt;
    }
    return known;
}

ORVCodexSessionSource::WorkingFolder ORVCodexSessionSource::readWorkingFolder(
    const std::string& url) {
    WorkingFolder result;
    const auto file = files_.openForReading(url, nullptr);
    ORVByteBuffer line;
    std::size_t lineLength = std::string_view::npos;
    while (file && lineLength == std::string_view::npos && line.size() < kFirstLineLimitBytes) {
        const std::uint64_t limit = line.empty() ? kFirstReadBytes : kFirstLineLimitBytes;
        const auto chunk = chunkBuffer_.read(*file, line.size(), limit, nullptr);
        if (!chunk || chunk->empty()) {
            return result;
        }
        const std::size_t lineFeed = chunk->find('\n');
        lineLength = lineFeed == std::string_view::npos ? lineFeed : line.size() + lineFeed;
        line.append(*chunk);
    }
    result.isFinal = file != nullptr;
    if (lineLength != std::string_view::npos) {
        const auto record =
            jsonReader_.readObject(line.bytes().substr(0, lineLength), firstRecordShape());
        result.path = record ? workingFolderIn(*record) : std::nullopt;
    }
    return result;
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotForFolder(
    const std::string& folder, ORVErrorSlot* error) {
    const auto tasks = tasksWithError(error);
    if (!tasks) {
        return std::nullopt;
    }
    Comparison comparison(files_, folder);
    const ORVTask* best = nullptr;
    std::optional<std::size_t> bestDepth;
    for (const ORVTask& task : *tasks) {
        const ORVWalkedFile& file = task.newestFile();
        const auto& path = workingFolder(file.path, file.fileNumber, file.modifiedAt).path;
        const auto depth = path ? comparison.depthOf(*path) : std::nullopt;
        // Tasks come newest first, so of equal depths the first one stays.
        if (depth && (!bestDepth || *depth > *bestDepth)) {
            best = &task;
            bestDepth = depth;
        }
    }
    releaseReadingMemory();
    return best ? snapshotForTask(*best, error) : std::nullopt;
}
