// Which folder a task works in, as the first line of its session file says, and which task works in
// a given folder. Tests: tests/sessions/tasks_test.cpp.

#include <algorithm>
#include <new>
#include <system_error>
#include <thread>
#include <unordered_map>

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

std::optional<std::string> ORVCodexSessionSource::workingFolderForTask(const ORVTask& task) {
    const ORVWalkedFile& file = task.newestFile();
    return workingFolder(file.path, file.fileNumber, file.modifiedAt).path;
}

const ORVCodexSessionSource::WorkingFolder& ORVCodexSessionSource::workingFolder(
    const std::string& url, std::uint64_t fileNumber, ORVFileDate modifiedAt) {
    WorkingFolder& known = workingFolders_[url];
    const bool isSameFile = known.fileNumber == fileNumber;
    // A first line that had not ended is read again when the file has changed.
    if (!isSameFile || (!known.isFinal && known.modifiedAt != modifiedAt)) {
        known = readWorkingFolder(url, chunkBuffer_, jsonReader_);
        known.fileNumber = fileNumber;
        known.modifiedAt = modifiedAt;
    }
    return known;
}

ORVCodexSessionSource::WorkingFolder ORVCodexSessionSource::readWorkingFolder(
    const std::string& url, platform::ChunkBuffer& chunkBuffer, ORVJSONReader& jsonReader) const {
    WorkingFolder result;
    const auto file = files_.openForReading(url, nullptr);
    ORVByteBuffer line;
    std::size_t lineLength = std::string_view::npos;
    while (file && lineLength == std::string_view::npos && line.size() < kFirstLineLimitBytes) {
        const std::uint64_t limit = line.empty() ? kFirstReadBytes : kFirstLineLimitBytes;
        const auto chunk = chunkBuffer.read(*file, line.size(), limit, nullptr);
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
            jsonReader.readObject(line.bytes().substr(0, lineLength), firstRecordShape());
        result.path = record ? workingFolderIn(*record) : std::nullopt;
    }
    return result;
}

/// reading.cpp passes the beginning of every file that it reads for its figures, which spares
/// opening the file a second time.
void ORVCodexSessionSource::takeWorkingFolder(const std::string& url,
                                              const ORVSessionParseState& state,
                                              std::string_view firstChunk) {
    const std::size_t lineFeed = firstChunk.find('\n');
    if (lineFeed != std::string_view::npos) {
        const auto record =
            jsonReader_.readObject(firstChunk.substr(0, lineFeed), firstRecordShape());
        workingFolders_[url] = {state.fileIdentifier.value_or(0),
                                {},
                                true,
                                record ? workingFolderIn(*record) : std::nullopt};
    }
}

/// Reads the first lines of very many files on all processors, since one after the other would be
/// felt. Each of n threads takes every n-th file; the results are stored when all have ended.
void ORVCodexSessionSource::readWorkingFoldersAhead(const std::vector<ORVTask>& tasks) {
    constexpr std::size_t kWorthThreads = 1'000;
    std::vector<const ORVWalkedFile*> files;
    for (const ORVTask& task : tasks) {
        if (!workingFolders_.contains(task.newestFile().path)) {
            files.push_back(&task.newestFile());
        }
    }
    if (files.size() < kWorthThreads) {
        return;
    }
    const std::size_t count = std::max(1U, std::thread::hardware_concurrency());
    std::vector<WorkingFolder> results(files.size());
    const auto readEvery = [&](std::size_t first) {
        platform::ChunkBuffer chunkBuffer;
        ORVJSONReader jsonReader;
        for (std::size_t i = first; i < files.size(); i += count) {
            try {
                results[i] = readWorkingFolder(files[i]->path, chunkBuffer, jsonReader);
            } catch (const std::bad_alloc&) {
                results[i] = {};  // Not final: it is tried again when the file has changed.
            }
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t first = 1; first < count; ++first) {
        try {
            threads.emplace_back(readEvery, first);
        } catch (const std::system_error&) {
            readEvery(first);
        }
    }
    readEvery(0);
    std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
    for (std::size_t i = 0; i < files.size(); ++i) {
        results[i].fileNumber = files[i]->fileNumber;
        results[i].modifiedAt = files[i]->modifiedAt;
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
    auto snapshot = best ? snapshotForTask(*best, error) : std::nullopt;
    releaseReadingMemory();
    return snapshot;
}
