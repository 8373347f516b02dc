#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix_run_loop.h"

namespace platform {

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
