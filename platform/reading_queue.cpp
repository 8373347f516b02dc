// Confines a thread to what it reads, and begins with another one when that was replaced, since
// rights that were given up do not come back. Tests: tests/platform/confinement_test.cpp.

#include "platform/reading_queue.h"

#include <sys/stat.h>

#include "platform/confinement.h"

namespace platform {

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
