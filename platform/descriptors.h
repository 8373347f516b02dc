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

/// Waits at most that long until up to PIPE_BUF bytes can be written without waiting, and returns
/// whether they can.
bool isWritable(int descriptor, int milliseconds);

}  // namespace platform
