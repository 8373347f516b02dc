#pragma once

// The functions of a Mac's kernel queues that Brimlet uses, for tests on Linux. They use epoll,
// which always reports a hang-up.

#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <ctime>

enum { EVFILT_READ = -1 };
enum { EV_ADD = 1, EV_DELETE = 2, EV_EOF = 0x8000 };
enum { NOTE_LOWAT = 1 };

struct kevent {
    std::uintptr_t ident;
    std::int16_t filter;
    std::uint16_t flags;
    std::uint32_t fflags;
    std::intptr_t data;
    void* udata;
};

inline void EV_SET(struct kevent* event, std::uintptr_t ident, int filter, int flags, int fflags,
                   std::intptr_t data, void* udata) {
    *event = {ident,
              static_cast<std::int16_t>(filter),
              static_cast<std::uint16_t>(flags),
              static_cast<std::uint32_t>(fflags),
              data,
              udata};
}

inline int kqueue() {
    return epoll_create1(EPOLL_CLOEXEC);
}

/// As many waiting bytes as this are reported, whatever number was demanded.
constexpr int kORVStandInBound = 4'096;

/// Takes either one change or places for events.
inline int kevent(int queue, const struct kevent* change, int, struct kevent* events, int places,
                  const timespec*) {
    if (change) {
        epoll_event wanted{};
        wanted.data.fd = static_cast<int>(change->ident);
        int waiting = 0;
        if (ioctl(wanted.data.fd, FIONREAD, &waiting) == 0 && waiting >= kORVStandInBound) {
            wanted.events = EPOLLIN;
        }
        const int operation = change->flags == EV_ADD ? EPOLL_CTL_ADD : EPOLL_CTL_DEL;
        return epoll_ctl(queue, operation, wanted.data.fd, &wanted);
    }
    epoll_event found[8];
    const int count = epoll_wait(queue, found, std::min(places, 8), 0);
    for (int i = 0; i < count; ++i) {
        EV_SET(&events[i], static_cast<std::uintptr_t>(found[i].data.fd), EVFILT_READ,
               found[i].events & (EPOLLHUP | EPOLLERR) ? EV_EOF : 0, 0, 0, nullptr);
    }
    return count;
}
