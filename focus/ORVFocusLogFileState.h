#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "focus/ORVFocusWindowState.h"
#include "text/byte_buffer.h"

/// How far one log file has been read, and the windows that its lines have described.
///
/// The source owns one for each path. A replaced or shortened file gets a fresh state without
/// windows; the state of a file that is no longer found is dropped.
struct ORVFocusLogFileState {
    /// How many bytes of the file have been read. The last pendingData.size() of them have not been
    /// interpreted yet.
    std::uint64_t offset = 0;

    /// The line whose line feed has not arrived. Its length is not limited.
    ORVByteBuffer pendingData;

    /// The inode of the file that the bytes came from; none when the file system has no numbers.
    std::optional<std::uint64_t> fileIdentifier;

    /// For how many more refreshes the file is passed over after memory ran out for it. Reading
    /// gigabytes in vain at every refresh would be felt.
    int refreshesToPassOver = 0;

    /// By web-contents identifier. The same identifier in another file is another window.
    std::unordered_map<std::string, ORVFocusWindowState> windows;
};
