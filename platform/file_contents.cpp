// Reads a small file as a whole. Tests: tests/platform/files_test.cpp.

#include <algorithm>

#include "platform/files.h"

namespace platform {
namespace {
constexpr std::size_t kFirstReadBytes = 16 * 1024;
}

std::optional<std::string> contentsOfFile(ORVFiles& files, const std::string& path,
                                          std::size_t limitBytes) {
    const auto file = files.openForReading(path, nullptr);
    if (!file) {
        return std::nullopt;
    }
    std::string contents;
    std::size_t used = 0;
    while (true) {
        // One byte more than the limit is asked for, to notice a file that is too large.
        contents.resize(std::min(std::max(kFirstReadBytes, used * 2), limitBytes + 1));
        const auto count =
            file->readAt(used, contents.data() + used, contents.size() - used, nullptr);
        if (!count) {
            return std::nullopt;
        }
        used += *count;
        if (used > limitBytes) {
            return std::nullopt;
        }
        if (*count == 0) {
            contents.resize(used);
            return contents;
        }
    }
}

}  // namespace platform
