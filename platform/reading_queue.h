#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix_run_loop.h"

namespace platform {

/// A serial queue with a thread of its own, which sleeps while there is nothing to do. Memory that
/// runs out in a closure fails the loop.
class ThreadQueue final : public ORVSerialQueue {
public:
    /// The loop must outlive the queue.
    explicit ThreadQueue(ORVPosixRunLoop& loop);

    /// False when the system could not start a thread; dispatched closures are then never run.
    bool hasThread() const { return hasThread_; }

    /// Drops the closures that have not begun. A thread that hangs in a closure is left behind, and
    /// no longer touches the queue.
    ~ThreadQueue() override;

    void dispatch(std::function<void()> closure) override;

    /// Waits at most that long until no closure runs or waits, and returns whether that is so.
    bool waitUntilIdle(std::chrono::milliseconds time);

private:
    struct State;
    bool hasThread_ = true;
    std::shared_ptr<State> state_;  ///< Shared with the thread, which may outlive the queue.
};

/// A serial queue with a thread that reads what others wrote, and so may read these places only.
///
/// The kernel knows a place as what stood there when the thread began. When something else stands
/// there before a closure runs, the queue gets a new thread.
class ReadingQueue final : public ORVSerialQueue {
public:
    /// The loop must outlive the queue. Places are files, and folders with everything below them.
    ReadingQueue(ORVPosixRunLoop& loop, std::vector<std::string> places);

    /// False when the system could not start a thread; dispatched closures are then never run.
    bool hasThread() const { return queue_->hasThread(); }

    void dispatch(std::function<void()> closure) override;

    /// Waits at most that long until no closure runs or waits on the thread, and returns whether
    /// that is so.
    bool waitUntilIdle(std::chrono::milliseconds time) { return queue_->waitUntilIdle(time); }

private:
    /// A file system's number and an inode; none for a place where nothing is.
    using Identity = std::optional<std::pair<std::uint64_t, std::uint64_t>>;

    std::vector<Identity> identities() const;
    std::unique_ptr<ThreadQueue> queueWithThread();

    ORVPosixRunLoop& loop_;
    const std::vector<std::string> places_;
    std::vector<Identity> known_;  ///< What the thread may read. Touched on the thread only.
    std::unique_ptr<ThreadQueue> queue_;
};

}  // namespace platform
