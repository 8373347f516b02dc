// A queue with one thread. A thread that hangs may outlive the queue, so both share the state.
// Tests: tests/shells/shells_test.cpp.

#include "platform/thread_queue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace platform {

struct ThreadQueue::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> closures;
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
            closures.pop_front();
            isRunning = true;
            lock.unlock();
            closure();
            closure = nullptr;  // Destroys what it holds before the lock is taken.
            lock.lock();
            isRunning = false;
            changed.notify_all();
        }
    }
};

ThreadQueue::ThreadQueue() : state_(std::make_shared<State>()) {
    try {
        std::thread([state = state_] { state->run(); }).detach();
    } catch (const std::system_error&) {
        hasThread_ = false;
    }
}

ThreadQueue::~ThreadQueue() {
    std::deque<std::function<void()>> dropped;  // Destroyed after the lock is released.
    const std::lock_guard<std::mutex> lock(state_->mutex);
    state_->isClosed = true;
    dropped.swap(state_->closures);
    state_->changed.notify_all();
}

void ThreadQueue::dispatch(std::function<void()> closure) {
    const std::lock_guard<std::mutex> lock(state_->mutex);
    state_->closures.push_back(std::move(closure));
    state_->changed.notify_all();
}

bool ThreadQueue::waitUntilIdle(std::chrono::milliseconds time) {
    std::unique_lock<std::mutex> lock(state_->mutex);
    return state_->changed.wait_for(
        lock, time, [this] { return !state_->isRunning && state_->closures.empty(); });
}

}  // namespace platform
