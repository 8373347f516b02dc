#pragma once

// The functions of a Mac's kernel queues that Brimlet uses, for tests on Linux. They use epoll,
// which always reports a hang-up.

#include <sys/epoll.h>
#include <unistd.h>

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

/// Takes either one change or one place for an event.
inline int kevent(int queue, const struct kevent* change, int, struct kevent* event, int,
                  const timespec*) {
    if (change) {
        epoll_event wanted{};
        wanted.data.fd = static_cast<int>(change->ident);
        const int operation = change->flags == EV_ADD ? EPOLL_CTL_ADD : EPOLL_CTL_DEL;
        return epoll_ctl(queue, operation, wanted.data.fd, &wanted);
    }
    epoll_event found{};
    const int count = epoll_wait(queue, &found, 1, 0);
    if (count == 1) {
        EV_SET(event, static_cast<std::uintptr_t>(found.data.fd), EVFILT_READ, EV_EOF, 0, 0,
               nullptr);
    }
    return count;
}
