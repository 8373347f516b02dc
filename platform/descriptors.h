#pragma once

#include <vector>

/// A descriptor that somebody waits for.
struct ORVWatchedDescriptor {
    /// A hang-up is reported whatever the interest is: for an output it means that its reader has
    /// closed the other end.
    enum class Interest { readable, writable, hangUpOnly };

    int descriptor = -1;
    Interest interest = Interest::readable;
    bool isReady = false;
};

namespace platform {

/// Sleeps until one of the descriptors is ready, a signal arrives, or the time is over (never, for
/// -1), and marks the descriptors that are ready.
void waitForDescriptors(std::vector<ORVWatchedDescriptor>& watched, int milliseconds);

/// Waits at most that long until a write of up to PIPE_BUF bytes would not wait, and returns
/// whether that is so. It is also so when the write would fail at once, for example without a
/// reader.
bool isWritable(int descriptor, int milliseconds);

}  // namespace platform
