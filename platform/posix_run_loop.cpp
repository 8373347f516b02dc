// A loop that sleeps in one system call. Posted closures and signals wake it through a pipe.
// Tests: tests/shells/shells_test.cpp.

#include "platform/posix_run_loop.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

class ORVPosixRunLoop::Timer final : public ORVRepeatingTimer {
public:
    Timer(ORVPosixRunLoop& loop, Clock::duration interval, Closure closure)
        : loop_(loop),
          interval_(interval),
          closure_(std::move(closure)),
          nextDue_(Clock::now() + interval) {
        loop_.timers_.push_back(this);
    }
    ~Timer() override { std::erase(loop_.timers_, this); }

    Clock::time_point nextDue() const { return nextDue_; }

    /// Returns the closure of a timer that is due, and sets the next firing a multiple of the
    /// interval after the first one. Firings that were missed are left out.
    Closure takeDue(Clock::time_point now) {
        nextDue_ += interval_ * ((now - nextDue_) / interval_ + 1);
        return closure_;
    }

private:
    ORVPosixRunLoop& loop_;
    const Clock::duration interval_;
    const Closure closure_;
    Clock::time_point nextDue_;
};

ORVPosixRunLoop::ORVPosixRunLoop() {
    int ends[2];
    if (pipe(ends) != 0) {
        return;
    }
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    wakeReadEnd_ = ends[0];
    wakeWriteEnd_ = ends[1];
}

ORVPosixRunLoop::~ORVPosixRunLoop() {
    dropClosures();
    if (isUsable()) {
        close(wakeReadEnd_);
        close(wakeWriteEnd_);
    }
}

void ORVPosixRunLoop::post(Closure closure) {
    const std::lock_guard<std::mutex> lock(mutex_);
    posted_.push_back(std::move(closure));
    const char wake = 0;
    // The write may fail because the pipe is full; the loop is awake then.
    [[maybe_unused]] const ssize_t ignored = write(wakeWriteEnd_, &wake, 1);
}

void ORVPosixRunLoop::wakeFromSignal() {
    const int savedError = errno;
    isSignalled_ = true;  // Set before the write, which wakes the loop or finds the pipe full.
    const char wake = 0;
    [[maybe_unused]] const ssize_t ignored = write(wakeWriteEnd_, &wake, 1);
    errno = savedError;
}

void ORVPosixRunLoop::postAfter(std::chrono::milliseconds delay, Closure closure) {
    delayed_.emplace(Clock::now() + delay, std::move(closure));
}

std::unique_ptr<ORVRepeatingTimer> ORVPosixRunLoop::makeRepeatingTimer(
    std::chrono::milliseconds interval, Closure closure) {
    return std::make_unique<Timer>(*this, interval, std::move(closure));
}

void ORVPosixRunLoop::watch(int descriptor, Interest interest, Closure ready) {
    watches_[descriptor] = {interest, std::move(ready)};
}

void ORVPosixRunLoop::unwatch(int descriptor) {
    watches_.erase(descriptor);
}

int ORVPosixRunLoop::run() {
    while (!isStopped_) {
        runPosted();
        runDue();
        if (!isStopped_) {
            waitForEvents();
        }
    }
    return status_;
}

void ORVPosixRunLoop::stop(int status) {
    if (!std::exchange(isStopped_, true)) {
        status_ = status;
    }
}

void ORVPosixRunLoop::dropClosures() {
    // Moved out first, because destroying them may destroy objects that remove timers or post.
    std::vector<Closure> posted;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        posted.swap(posted_);
    }
    const auto delayed = std::exchange(delayed_, {});
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
    while (!delayed_.empty() && delayed_.begin()->first <= now) {
        const Closure closure = std::move(delayed_.begin()->second);
        delayed_.erase(delayed_.begin());
        turn(closure);
    }
    const std::vector<Timer*> timers = timers_;
    for (Timer* timer : timers) {
        const bool isAlive = std::find(timers_.begin(), timers_.end(), timer) != timers_.end();
        if (isAlive && timer->nextDue() <= now) {
            turn(timer->takeDue(now));
        }
    }
}

int ORVPosixRunLoop::millisecondsToNextDue() const {
    std::optional<Clock::time_point> due;
    if (!delayed_.empty()) {
        due = delayed_.begin()->first;
    }
    for (const Timer* timer : timers_) {
        due = due ? std::min(*due, timer->nextDue()) : timer->nextDue();
    }
    if (!due) {
        return -1;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, wait.count()));
}

void ORVPosixRunLoop::waitForEvents() {
    std::vector<ORVWatchedDescriptor> watched = {{wakeReadEnd_, Interest::readable}};
    for (const auto& [descriptor, watch] : watches_) {
        watched.push_back({descriptor, watch.interest});
    }
    platform::waitForDescriptors(watched, millisecondsToNextDue());
    if (watched[0].isReady) {
        char wakes[64];
        while (read(wakeReadEnd_, wakes, sizeof wakes) > 0) {
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
