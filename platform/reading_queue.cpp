// A queue with one thread, which may hang and outlive its queue, so that both share the state; and
// one whose thread is confined to what it reads. It begins with another thread when that was
// replaced, since rights that were given up do not come back. Tests:
// tests/platform/confinement_test.cpp, tests/shells/shells_test.cpp.

#include "platform/reading_queue.h"

#include <signal.h>
#include <sys/stat.h>

#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/confinement.h"

namespace platform {

struct ThreadQueue::State {
    explicit State(ORVPosixRunLoop& owner) : loop(owner) {}

    ORVPosixRunLoop& loop;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::function<void()>> closures;
    bool isRunning = false;
    bool isClosed = false;

    void run() {
        std::unique_lock<std::mutex> lock(mutex);
        while (true) {
            changed.wait(lock, [this] { return isClosed || !closures.empty(); });
            if (isClosed) {
                return;
            }
            std::function<void()> closure = std::move(closures.front());
            closures.erase(closures.begin());
            isRunning = true;
            lock.unlock();
            bool isOutOfMemory = false;
            try {
                closure();
            } catch (const std::bad_alloc&) {
                isOutOfMemory = true;
            }
            closure = nullptr;  // Destroys what it holds before the lock is taken.
            lock.lock();
            if (isOutOfMemory && !isClosed) {
                loop.fail(ENOMEM);
            }
            isRunning = false;
            changed.notify_all();
        }
    }
};

ThreadQueue::ThreadQueue(ORVPosixRunLoop& loop) : state_(std::make_shared<State>(loop)) {
    // Handlers share variables with the thread of the loop alone, and use rights that a reading
    // thread gives up. The thread inherits what is blocked; its faults still end the program.
    sigset_t handled;
    sigset_t before;
    sigemptyset(&handled);
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH}) {
        sigaddset(&handled, signalNumber);
    }
    pthread_sigmask(SIG_BLOCK, &handled, &before);
    try {
        std::thread([state = state_] { state->run(); }).detach();
    } catch (const std::system_error&) {
        hasThread_ = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

ThreadQueue::~ThreadQueue() {
    std::vector<std::function<void()>> dropped;  // Destroyed after the lock is released.
    const std::lock_guard<std::mutex> lock(state_->mutex);
    state_->isClosed = true;
    dropped.swap(state_->closures);
    state_->changed.notify_all();
}

void ThreadQueue::dispatch(std::function<void()> closure) {
    if (!hasThread_) {
        return;  // What waits for ever would keep the queue from being idle.
    }
    const std::lock_guard<std::mutex> lock(state_->mutex);
    state_->closures.push_back(std::move(closure));
    state_->changed.notify_all();
}

bool ThreadQueue::waitUntilIdle(std::chrono::milliseconds time) {
    std::unique_lock<std::mutex> lock(state_->mutex);
    return state_->changed.wait_for(
        lock, time, [this] { return !state_->isRunning && state_->closures.empty(); });
}

ReadingQueue::ReadingQueue(ORVPosixRunLoop& loop, std::vector<std::string> places)
    : loop_(loop), places_(std::move(places)), queue_(queueWithThread()) {}

std::unique_ptr<ThreadQueue> ReadingQueue::queueWithThread() {
    auto queue = std::make_unique<ThreadQueue>(loop_);
    queue->dispatch([this] {
        known_ = identities();
        confineThreadToReading(places_);
    });
    return queue;
}

void ReadingQueue::dispatch(std::function<void()> closure) {
    queue_->dispatch([this, closure = std::move(closure)] {
        if (identities() == known_) {
            closure();
            return;
        }
        loop_.post([this, closure] {
            auto fresh = queueWithThread();
            if (fresh->hasThread()) {
                queue_ = std::move(fresh);
            }
            // Not compared again: whoever replaces places quickly could keep us from ever reading.
            queue_->dispatch(closure);
        });
    });
}

std::vector<ReadingQueue::Identity> ReadingQueue::identities() const {
    std::vector<Identity> found;
    for (const std::string& place : places_) {
        struct stat status;
        const bool isThere = stat(place.c_str(), &status) == 0;
        found.push_back(isThere ? Identity({status.st_dev, status.st_ino}) : std::nullopt);
    }
    return found;
}

}  // namespace platform
