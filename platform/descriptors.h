#pragma once

#include <vector>

/// A descriptor that somebody waits for.
struct ORVWatchedDescriptor {
    /// A hang-up always counts; at the other end of an output it tells of a reader that left.
    enum class Interest { readable, writable, hangUpOnly };

    int descriptor = -1;
    Interest interest = Interest::readable;
    bool isReady = false;
};

namespace platform {

/// Sleeps until one of the descriptors is ready, a signal arrives, or the time is over; -1 for no
/// end. Marks those that are ready.
void waitForDescriptors(std::vector<ORVWatchedDescriptor>& watched, int milliseconds);

/// Whether a write of up to PIPE_BUF bytes will not wait, asked for at most that long.
bool isWritable(int descriptor, int milliseconds);

}  // namespace platform
