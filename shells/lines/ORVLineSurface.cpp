// A slow reader must not stop the application: a line waits for it, and a newer line takes the
// place of one that waits. Commands come from a descriptor that may send any bytes at any speed.
// Tests: tests/shells/shells_test.cpp.

#include "shells/lines/ORVLineSurface.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr int kFlushMilliseconds = 200;

/// No command is nearly as long. The rest of a longer line is dropped, so that it takes no memory.
constexpr std::size_t kLongestLine = 4'096;

}  // namespace

ORVLineSurface::ORVLineSurface(ORVPosixRunLoop& loop, int descriptor,
                               std::function<std::string()> line, std::function<void(int)> ended)
    : loop_(loop), descriptor_(descriptor), line_(std::move(line)), ended_(std::move(ended)) {
    watchForMore();
}

ORVLineSurface::~ORVLineSurface() {
    loop_.unwatch(descriptor_);
}

void ORVLineSurface::show() {
    std::string line = line_();
    if (line != waiting_) {
        waiting_ = std::move(line);
        writeWhatFits();
    }
}

void ORVLineSurface::writeWhatFits() {
    // A pipe that is ready takes this many bytes without waiting.
    constexpr std::size_t kAtOnce = PIPE_BUF;
    while (!hasEnded_ && hasMore() && platform::isWritable(descriptor_, 0)) {
        if (underWay_.empty()) {
            shown_ = waiting_;
            underWay_ = shown_ + '\n';
        }
        const ssize_t count =
            write(descriptor_, underWay_.data(), std::min(underWay_.size(), kAtOnce));
        if (count > 0) {
            underWay_.erase(0, static_cast<std::size_t>(count));
        } else if (count < 0 && errno != EINTR && errno != EAGAIN) {
            hasEnded_ = true;
            loop_.unwatch(descriptor_);
            ended_(errno == EPIPE ? 0 : errno);
        }
    }
    watchForMore();
}

void ORVLineSurface::watchForMore() {
    if (hasEnded_) {
        return;
    }
    if (hasMore()) {
        loop_.watch(descriptor_, ORVPosixRunLoop::Interest::writable, [this] { writeWhatFits(); });
        return;
    }
    loop_.watch(descriptor_, ORVPosixRunLoop::Interest::hangUpOnly, [this] {
        hasEnded_ = true;
        loop_.unwatch(descriptor_);
        ended_(0);
    });
}

void ORVLineSurface::close() {
    while (!hasEnded_ && hasMore() && platform::isWritable(descriptor_, kFlushMilliseconds)) {
        writeWhatFits();
    }
}

ORVCommandInput::ORVCommandInput(ORVPosixRunLoop& loop, int descriptor,
                                 std::function<void(const std::string&)> command)
    : loop_(loop), descriptor_(descriptor), command_(std::move(command)) {
    loop_.watch(descriptor_, ORVPosixRunLoop::Interest::readable, [this] { readMore(); });
}

ORVCommandInput::~ORVCommandInput() {
    loop_.unwatch(descriptor_);
}

void ORVCommandInput::readMore() {
    std::array<char, 4'096> bytes{};
    const ssize_t count = read(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (count <= 0) {
        loop_.unwatch(descriptor_);
        if (!pending_.empty()) {
            handOver(std::move(pending_));
        }
        return;
    }
    for (ssize_t i = 0; i < count; ++i) {
        const char c = bytes[static_cast<std::size_t>(i)];
        if (c == '\n') {
            handOver(std::move(pending_));
            pending_.clear();
            lineIsTooLong_ = false;
        } else if (!lineIsTooLong_) {
            pending_ += c;
            lineIsTooLong_ = pending_.size() == kLongestLine;
        }
    }
}

void ORVCommandInput::handOver(std::string line) {
    loop_.post([this, line = std::move(line)] { command_(line); });
}
