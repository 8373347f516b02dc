#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"

/// A task: all session files whose names hold its identifier.
struct ORVTask {
    /// The identifier as the newest file's name writes it. A file whose name holds none is a task
    /// by itself, and its whole name stands here.
    std::string threadID;
    std::vector<ORVWalkedFile> files;  ///< Oldest first, equal dates by path; never empty.

    const ORVWalkedFile& newestFile() const { return files.back(); }
};
