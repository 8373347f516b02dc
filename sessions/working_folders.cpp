// Which folder a task works in, as the first line of its session file says, and which task works in
// a given folder. Tests: tests/sessions/tasks_test.cpp.

#include <memory>
#include <unordered_map>

#include "platform/parallel.h"
#include "sessions/ORVCodexSessionSource.h"
#include "text/byte_buffer.h"

namespace {

/// The agent's first lines hold its instructions and have some 25 KB. A line that is longer than
/// this limit names no folder.
constexpr std::size_t kFirstLineLimitBytes = 1024 * 1024;

/// Enough to read most first lines with one system call.
constexpr std::uint64_t kFirstReadBytes = 32 * 1024;

const ORVJSONShape& firstRecordShape() {
    static const ORVJSONShape kShape{
        "", false, {{"type", true}, {"payload", false, {{"cwd", true}}}}};
    return kShape;
}

std::optional<std::string> workingFolderIn(const ORVJSONValue& record) {
    const std::string& path = record["payload"]["cwd"].text;
    const bool namesFolder = record["type"].text == "session_meta" && path.starts_with('/');
    return namesFolder ? std::optional(path) : std::nullopt;
}

/// Returns the length of the holder's path when the folder is the holder itself or lies in it, else
/// none. The root folder holds everything and has the length 0.
std::optional<std::size_t> depthOfHolder(std::string_view holder, std::string_view folder) {
    while (holder.ends_with('/')) {
        holder.remove_suffix(1);
    }
    const bool holds =
        folder.starts_with(holder) &&
        (folder.size() == holder.size() || folder[holder.size()] == '/' || holder.empty());
    return holds ? std::optional(holder.size()) : std::nullopt;
}

/// Compares the working folders of tasks with one folder, by their paths as written and, when those
/// do not match, by their paths without links. Each path is looked up once.
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
    const std::string& path) {
    const auto attributes = files_.attributesOfItem(path, nullptr);
    if (!attributes || !attributes->modifiedAt) {
        return std::nullopt;
    }
    return workingFolder(path, attributes->fileIdentifier.value_or(0), *attributes->modifiedAt)
        .path;
}

std::optional<std::string> ORVCodexSessionSource::workingFolderForTask(const ORVTask& task) {
    const ORVWalkedFile& file = task.newestFile();
    return workingFolder(file.path, file.fileIdentifier, file.modifiedAt).path;
}

const ORVCodexSessionSource::WorkingFolder& ORVCodexSessionSource::workingFolder(
    const std::string& path, std::uint64_t fileIdentifier, ORVFileDate modifiedAt) {
    WorkingFolder& known = workingFolders_[path];
    const bool isSameFile = known.fileIdentifier == fileIdentifier;
    // A first line that had not ended is read again when the file has changed.
    if (!isSameFile || (!known.isFinal && known.modifiedAt != modifiedAt)) {
        ORVReadingMemory memory;
        known = readWorkingFolder(path, memory);
        known.fileIdentifier = fileIdentifier;
        known.modifiedAt = modifiedAt;
    }
    return known;
}

ORVCodexSessionSource::WorkingFolder ORVCodexSessionSource::readWorkingFolder(
    const std::string& path, ORVReadingMemory& memory) const {
    WorkingFolder result;
    const auto file = files_.openForReading(path, nullptr);
    ORVByteBuffer line;
    std::size_t lineLength = std::string_view::npos;
    while (file && lineLength == std::string_view::npos && line.size() < kFirstLineLimitBytes) {
        const std::uint64_t limit = line.empty() ? kFirstReadBytes : kFirstLineLimitBytes;
        const auto chunk = memory.chunks.read(*file, line.size(), limit, nullptr);
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
            memory.json.readObject(line.bytes().substr(0, lineLength), firstRecordShape());
        result.path = record ? workingFolderIn(*record) : std::nullopt;
    }
    return result;
}

/// Reading the first lines of many files one after the other would be felt.
void ORVCodexSessionSource::readWorkingFoldersAhead(std::span<const ORVTask> tasks) {
    constexpr std::size_t kWorthThreads = 64;
    std::vector<const ORVWalkedFile*> files;
    for (const ORVTask& task : tasks) {
        if (!workingFolders_.contains(task.newestFile().path)) {
            files.push_back(&task.newestFile());
        }
    }
    if (files.size() < kWorthThreads) {
        return;
    }
    std::vector<WorkingFolder> results(files.size());
    platform::inParallel(files.size(), [&] {
        return [&, memory = std::make_shared<ORVReadingMemory>()](std::size_t i) {
            results[i] = readWorkingFolder(files[i]->path, *memory);
            results[i].fileIdentifier = files[i]->fileIdentifier;
            results[i].modifiedAt = files[i]->modifiedAt;
        };
    });
    for (std::size_t i = 0; i < files.size(); ++i) {
        workingFolders_[files[i]->path] = std::move(results[i]);
    }
}

std::optional<ORVSessionSnapshot> ORVCodexSessionSource::snapshotForFolder(
    const std::string& folder, ORVErrorSlot* error) {
    const auto tasks = tasksWithError(error);
    if (!tasks) {
        return std::nullopt;
    }
    readWorkingFoldersAhead(*tasks);
    Comparison comparison(files_, folder);
    const ORVTask* best = nullptr;
    std::optional<std::size_t> bestDepth;
    for (const ORVTask& task : *tasks) {
        const auto path = workingFolderForTask(task);
        const auto depth = path ? comparison.depthOf(*path) : std::nullopt;
        // Tasks come newest first, so of equal depths the first one stays.
        if (depth && (!bestDepth || *depth > *bestDepth)) {
            best = &task;
            bestDepth = depth;
        }
    }
    return best ? snapshotForTask(*best, error) : std::nullopt;
}
