#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

/// A descriptor that somebody waits for.
struct ORVWatchedDescriptor {
    /// A hang-up is reported whatever the interest is: for an output it means that its reader has
    /// closed the other end.
    enum class Interest { readable, writable, hangUpOnly };

    int descriptor = -1;
    Interest interest = Interest::readable;
    bool isReady = false;
};

namespace platform {

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Owns a descriptor, or none when the number is negative.
class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() {
        if (number_ >= 0) {
            close(number_);
        }
    }
    int number() const { return number_; }
    int release() { return std::exchange(number_, -1); }

private:
    int number_;
};

/// Sleeps until one of the descriptors is ready, a signal arrives, or the time is over (never, for
/// -1), and marks the descriptors that are ready. It may also end without a reason, but not more
/// often than once a second. Returns 0, or the errno when the system cannot
/// wait for them: who went on then would turn in circles.
[[nodiscard]] int waitForDescriptors(std::vector<ORVWatchedDescriptor>& watched, int milliseconds);

/// Waits at most that long until a write of up to PIPE_BUF bytes would not wait, and returns
/// whether that is so. It is also so when the write would fail at once, for example without a
/// reader. With -1 it waits for ever, and returns false, with the cause in errno, only when the
/// system cannot wait.
bool isWritable(int descriptor, int milliseconds);

}  // namespace platform
