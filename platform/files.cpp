// Walks through a tree of folders, and reads a small file as a whole. Folders wait in a list and
// are opened by path, one at a time, so that only one descriptor is open and nothing recurses. A
// folder whose path is too long for the system counts as one that cannot be read. Tests:
// tests/platform/files_test.cpp.

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "platform/files.h"

bool ORVFiles::walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
                    const ErrorHandler& failed) {
    std::vector<std::string> waiting = {root};
    Links links = Links::followed;
    while (!waiting.empty()) {
        const std::string path = std::move(waiting.back());
        waiting.pop_back();
        ORVErrorSlot error;
        const auto folder = openFolder(path, links, &error);
        const bool isRoot = std::exchange(links, Links::refused) == Links::followed;
        if (!folder) {
            failed(std::move(*error));
            if (isRoot) {
                return false;
            }
            continue;
        }
        const std::string prefix = path.ends_with('/') ? path : path + '/';
        folder->readItems(
            wanted,
            [&](const char* name, const ORVItemStatus& status) {
                visit({prefix + name, status.modifiedAt, status.fileIdentifier, status.size});
            },
            [&](const char* name) { waiting.push_back(prefix + name); },
            [&](const std::string& name, ORVError&& itemError) {
                if (name.empty()) {
                    failed(std::move(itemError));
                }
            });
    }
    return true;
}

namespace platform {

std::optional<std::string> contentsOfFile(ORVFiles& files, const std::string& path,
                                          std::size_t limitBytes, ORVErrorSlot* error) {
    const auto file = files.openForReading(path, error);
    if (!file) {
        return std::nullopt;
    }
    constexpr std::size_t kFirstReadBytes = 16 * 1024;
    std::string contents;
    std::size_t used = 0;
    while (true) {
        // One byte more than the limit is asked for, to notice a file that is too large.
        contents.resize(std::min(std::max(kFirstReadBytes, used * 2), limitBytes + 1));
        const auto count =
            file->readAt(used, contents.data() + used, contents.size() - used, error);
        if (!count) {
            return std::nullopt;
        }
        used += *count;
        if (used > limitBytes) {
            storeError(error, posixError(EFBIG));
            return std::nullopt;
        }
        if (*count == 0) {
            contents.resize(used);
            return contents;
        }
    }
}

}  // namespace platform
