// Reads commands from a descriptor that may send any bytes at any speed.
// Tests: tests/shells/shells_test.cpp.

#include "shells/lines/ORVCommandInput.h"

#include <unistd.h>

#include <array>
#include <cerrno>

namespace {

/// No command is nearly as long. The rest of a longer line is dropped, so that it takes no memory.
constexpr std::size_t kLongestLine = 4'096;

}  // namespace

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
