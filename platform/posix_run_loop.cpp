// A loop that sleeps in one system call. Posted closures and signals wake it through a pipe. Tests:
// tests/shells/shells_test.cpp.

#include "platform/posix_run_loop.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <utility>

ORVPosixRunLoop::ORVPosixRunLoop() {
    int ends[2];
    if (pipe(ends) != 0) {
        return;
    }
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    wakeReadEnd_ = platform::FileDescriptor(ends[0]);
    wakeWriteEnd_ = platform::FileDescriptor(ends[1]);
}

ORVPosixRunLoop::~ORVPosixRunLoop() {
    dropClosures();
}

/// Signal handlers call this, so it takes no lock.
void ORVPosixRunLoop::wake() {
    const int savedError = errno;
    const char wake = 0;
    // The write may fail because the pipe is full; the loop is awake then.
    [[maybe_unused]] const ssize_t ignored = write(wakeWriteEnd_.number(), &wake, 1);
    errno = savedError;
}

void ORVPosixRunLoop::post(Closure closure) {
    const std::lock_guard<std::mutex> lock(mutex_);
    posted_.push_back(std::move(closure));
    wake();
}

void ORVPosixRunLoop::wakeFromSignal() {
    isSignalled_ = true;  // Set before the write, which wakes the loop or finds the pipe full.
    wake();
}

void ORVPosixRunLoop::fail(int errnoValue) {
    failure_ = errnoValue;
    wake();
}

void ORVPosixRunLoop::postAfter(std::chrono::milliseconds delay, Closure closure) {
    timed_.emplace(Clock::now() + delay, Timed{std::move(closure), {}});
}

void ORVPosixRunLoop::repeat(std::chrono::milliseconds interval, Closure closure) {
    timed_.emplace(Clock::now() + interval, Timed{std::move(closure), interval});
}

void ORVPosixRunLoop::watch(int descriptor, Interest interest, Closure ready) {
    watches_[descriptor] = {interest, std::move(ready)};
}

void ORVPosixRunLoop::unwatch(int descriptor) {
    watches_.erase(descriptor);
}

int ORVPosixRunLoop::run() {
    try {
        runTurns();
    } catch (const std::bad_alloc&) {
        fail(ENOMEM);
    }
    return failure_ != 0 ? EXIT_FAILURE : status_;
}

void ORVPosixRunLoop::runTurns() {
    while (!isStopped_ && failure_ == 0) {
        runPosted();
        runDue();
        if (!isStopped_) {
            waitForEvents();
        }
    }
}

void ORVPosixRunLoop::stop(int status) {
    if (!std::exchange(isStopped_, true)) {
        status_ = status;
    }
}

void ORVPosixRunLoop::dropClosures() {
    // Moved out first, because destroying them may destroy objects that post.
    std::vector<Closure> posted;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        posted.swap(posted_);
    }
    const auto timed = std::exchange(timed_, {});
    watches_.clear();
    turnEnd_ = nullptr;
    wakened_ = nullptr;
}

void ORVPosixRunLoop::turn(const Closure& closure) {
    if (isStopped_ || !closure) {
        return;
    }
    closure();
    if (turnEnd_) {
        turnEnd_();
    }
}

void ORVPosixRunLoop::runPosted() {
    std::vector<Closure> closures;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        closures.swap(posted_);
    }
    for (const Closure& closure : closures) {
        turn(closure);
    }
}

void ORVPosixRunLoop::runDue() {
    const Clock::time_point now = Clock::now();
    while (!timed_.empty() && timed_.begin()->first <= now) {
        auto due = timed_.extract(timed_.begin());
        const Clock::duration interval = due.mapped().interval;
        if (interval.count() == 0) {
            turn(due.mapped().closure);
            continue;
        }
        // A multiple of the interval after the first firing. Firings that were missed are left out.
        due.key() += interval * ((now - due.key()) / interval + 1);
        turn(timed_.insert(std::move(due))->second.closure);
    }
}

int ORVPosixRunLoop::millisecondsToNextDue() const {
    if (timed_.empty()) {
        return -1;
    }
    const auto wait =
        std::chrono::ceil<std::chrono::milliseconds>(timed_.begin()->first - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, wait.count()));
}

void ORVPosixRunLoop::waitForEvents() {
    std::vector<ORVWatchedDescriptor> watched = {{wakeReadEnd_.number(), Interest::readable}};
    for (const auto& [descriptor, watch] : watches_) {
        watched.push_back({descriptor, watch.interest});
    }
    const int failure = platform::waitForDescriptors(watched, millisecondsToNextDue());
    if (failure != 0) {
        fail(failure);
        return;
    }
    if (watched[0].isReady) {
        char wakes[64];
        while (read(wakeReadEnd_.number(), wakes, sizeof wakes) > 0) {
        }
        if (isSignalled_.exchange(false)) {
            turn(wakened_);
        }
    }
    for (std::size_t i = 1; i < watched.size(); ++i) {
        const auto found = watches_.find(watched[i].descriptor);
        if (watched[i].isReady && found != watches_.end()) {
            const Closure ready = found->second.ready;
            turn(ready);
        }
    }
}
