// Waits with poll, which always reports a hang-up.
// Tests: tests/platform/descriptors_test.cpp.

#include <poll.h>

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

bool isWritable(int descriptor, int milliseconds) {
    pollfd polled{descriptor, POLLOUT, 0};
    return uninterrupted([&] { return poll(&polled, 1, milliseconds); }) > 0;
}

}  // namespace platform
