// Waits with select, because poll fails on a Mac's terminals. select cannot wait for a hang-up
// alone; a kernel queue can, and it is itself a descriptor that select can wait for. Tests:
// tests/platform/descriptors_test.cpp, over a stand-in for the kernel queue.

#include <sys/event.h>
#include <sys/select.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <span>

#include "platform/descriptors.h"

namespace platform {
namespace {

using Interest = ORVWatchedDescriptor::Interest;

/// Returns the time as select takes it: null, which means no limit, for a negative time.
timeval* timeLimit(timeval& limit, int milliseconds) {
    limit.tv_sec = milliseconds / 1'000;
    limit.tv_usec = (milliseconds % 1'000) * 1'000;
    return milliseconds < 0 ? nullptr : &limit;
}

bool fitsSet(int descriptor) {
    return descriptor >= 0 && descriptor < FD_SETSIZE;
}

/// Whether the descriptor is a pipe or a socket, whose reader can close the other end. For other
/// outputs a kernel queue reports more than hang-ups, and a terminal that hangs up sends a signal.
bool hasReader(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 &&
           (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

/// A kernel queue for outputs whose reader closes its end. The end of a named pipe's reader is not
/// reported; it shows at the next write.
class HangUpQueue {
public:
    explicit HangUpQueue(const std::vector<ORVWatchedDescriptor>& watched)
        : events_(watched.size()) {
        for (const ORVWatchedDescriptor& watch : watched) {
            if (watch.interest != Interest::hangUpOnly || !hasReader(watch.descriptor)) {
                continue;
            }
            if (descriptor() < 0) {
                queue_ = FileDescriptor(kqueue());
            }
            change(static_cast<uintptr_t>(watch.descriptor), EV_ADD);
        }
        for (const struct kevent& event : events()) {
            if (!isHangUp(event)) {
                change(event.ident, EV_DELETE);
                isBlind_ = true;
            }
        }
    }

    int descriptor() const { return queue_.number(); }

    /// Whether a descriptor is left out because it would end every wait at once. What a reader has
    /// sent, and nobody here reads, is reported from a number of bytes on. None reaches the
    /// demanded one, but the system bounds it by the size of a socket's buffer, and may report a
    /// named pipe from its first byte on.
    bool isBlind() const { return isBlind_; }

    void mark(std::vector<ORVWatchedDescriptor>& watched) {
        for (const struct kevent& event : events()) {
            for (ORVWatchedDescriptor& watch : watched) {
                watch.isReady =
                    watch.isReady || (isHangUp(event) && watch.interest == Interest::hangUpOnly &&
                                      static_cast<uintptr_t>(watch.descriptor) == event.ident);
            }
        }
    }

private:
    static bool isHangUp(const struct kevent& event) { return (event.flags & EV_EOF) != 0; }

    void change(uintptr_t identifier, std::uint16_t flags) const {
        struct kevent change;
        EV_SET(&change, identifier, EVFILT_READ, flags, NOTE_LOWAT, INT_MAX, nullptr);
        kevent(descriptor(), &change, 1, nullptr, 0, nullptr);
    }

    std::span<const struct kevent> events() {
        const timespec atOnce{0, 0};
        const int count = kevent(descriptor(), nullptr, 0, events_.data(),
                                 static_cast<int>(events_.size()), &atOnce);
        return {events_.data(), static_cast<std::size_t>(std::max(count, 0))};
    }

    FileDescriptor queue_;
    std::vector<struct kevent> events_;
    bool isBlind_ = false;
};

}  // namespace

int waitForDescriptors(std::vector<ORVWatchedDescriptor>& watched, int milliseconds) {
    constexpr int kNextLook = 1'000;
    HangUpQueue hangUps(watched);
    if (hangUps.isBlind()) {
        milliseconds = milliseconds < 0 ? kNextLook : std::min(milliseconds, kNextLook);
    }
    fd_set readable;
    fd_set writable;
    FD_ZERO(&readable);
    FD_ZERO(&writable);
    int highest = -1;
    const auto add = [&highest](int descriptor, fd_set& set) {
        if (fitsSet(descriptor)) {
            FD_SET(descriptor, &set);
            highest = std::max(highest, descriptor);
        }
    };
    for (ORVWatchedDescriptor& watch : watched) {
        watch.isReady = false;
        if (watch.interest != Interest::hangUpOnly) {
            add(watch.descriptor, watch.interest == Interest::readable ? readable : writable);
        }
    }
    add(hangUps.descriptor(), readable);
    timeval limit{};
    const int count =
        select(highest + 1, &readable, &writable, nullptr, timeLimit(limit, milliseconds));
    if (count <= 0) {
        const int failure = count < 0 ? errno : 0;
        for (ORVWatchedDescriptor& watch : watched) {
            watch.isReady = failure == EBADF;  // Using the bad one then fails.
        }
        return failure == EBADF || failure == EINTR ? 0 : failure;
    }
    for (ORVWatchedDescriptor& watch : watched) {
        if (watch.interest != Interest::hangUpOnly && fitsSet(watch.descriptor)) {
            watch.isReady =
                FD_ISSET(watch.descriptor,
                         watch.interest == Interest::readable ? &readable : &writable) != 0;
        }
    }
    hangUps.mark(watched);
    return 0;
}

bool isWritable(int descriptor, int milliseconds) {
    std::vector<ORVWatchedDescriptor> watched = {{descriptor, Interest::writable}};
    int failure = 0;
    do {
        failure = waitForDescriptors(watched, milliseconds);
    } while (milliseconds < 0 && failure == 0 && !watched.front().isReady);
    errno = failure;
    return watched.front().isReady;
}

}  // namespace platform
