// Waits with poll, which always reports a hang-up.
// Tests: tests/platform/descriptors_test.cpp.

#include <poll.h>
#include <sys/select.h>

#include <cassert>

#include "platform/descriptors.h"

namespace platform {
namespace {

short eventsOf(ORVWatchedDescriptor::Interest interest) {
    switch (interest) {
        case ORVWatchedDescriptor::Interest::readable:
            return POLLIN;
        case ORVWatchedDescriptor::Interest::writable:
            return POLLOUT;
        case ORVWatchedDescriptor::Interest::hangUpOnly:
            break;
    }
    return 0;
}

}  // namespace

int waitForDescriptors(std::vector<ORVWatchedDescriptor>& watched, int milliseconds) {
    std::vector<pollfd> polled;
    polled.reserve(watched.size());
    for (const ORVWatchedDescriptor& watch : watched) {
        polled.push_back({watch.descriptor, eventsOf(watch.interest), 0});
    }
    const int count = poll(polled.data(), static_cast<nfds_t>(polled.size()), milliseconds);
    const int failure = count < 0 && errno != EINTR ? errno : 0;
    for (std::size_t i = 0; i < watched.size(); ++i) {
        watched[i].isReady = count > 0 && polled[i].revents != 0;
    }
    return failure;
}

/// Uses select, since poll refuses even one descriptor when the process may have none any more, and
/// the reason why the loop ended must still be told.
bool isWritable(int descriptor, int milliseconds) {
    assert(descriptor >= 0 && descriptor < FD_SETSIZE);
    const int count = uninterrupted([&] {
        fd_set writable;
        FD_ZERO(&writable);
        FD_SET(descriptor, &writable);
        timeval limit{milliseconds / 1'000, milliseconds % 1'000 * 1'000};
        return select(descriptor + 1, nullptr, &writable, nullptr,
                      milliseconds < 0 ? nullptr : &limit);
    });
    return count > 0 || (count < 0 && errno == EBADF);
}

}  // namespace platform
