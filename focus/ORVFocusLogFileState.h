#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "focus/ORVFocusWindowState.h"
#include "text/byte_buffer.h"

/// How far one log file has been read, and the windows it has shown.
///
/// One per path, owned by the source. A replaced or shortened file gets a fresh one, without
/// windows; one that is no longer found loses its own.
struct ORVFocusLogFileState {
    /// Bytes of the file already in memory. The last pendingData.size() of them wait there.
    std::uint64_t offset = 0;

    /// The line whose line feed has not arrived. Unbounded.
    ORVByteBuffer pendingData;

    /// Inode the bytes came from; none where the file system has no number.
    std::optional<std::uint64_t> fileIdentifier;

    /// For so many refreshes more the file is passed over: there was not enough memory for it, and
    /// reading gigabytes in vain at every refresh would be felt.
    int refreshesToPassOver = 0;

    /// By web-contents identifier. The same one in another file is another window.
    std::unordered_map<std::string, ORVFocusWindowState> windows;
};
