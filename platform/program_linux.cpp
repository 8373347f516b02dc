// Finds the program, closes what it inherited, and sets glibc's allocator so that it maps large
// blocks. Measured by bench/compare. Tests: tests/ctl/brimletctl_test.cpp.

#include <malloc.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/program.h"

namespace platform {

std::string programPath() {
    std::array<char, 4096> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : "";
}

std::optional<MenuBarProgram> menuBarProgram(const std::string&) {
    return std::nullopt;
}

void closeInheritedDescriptors() {
    constexpr long kCloseRange = 436;  // Younger than some headers and kernels.
    constexpr unsigned kFirst = STDERR_FILENO + 1;
    if (syscall(kCloseRange, kFirst, ~0U, 0) == 0) {
        return;
    }
    constexpr long kMost = 64 * 1024;
    const int end = static_cast<int>(std::clamp(sysconf(_SC_OPEN_MAX), 1'024L, kMost));
    for (int i = kFirst; i < end; ++i) {
        close(i);
    }
}

void returnFreedMemory() {
    // glibc raises the first threshold when a larger block is freed, unless one of these is set.
    constexpr int kMappedFromBytes = 64 * 1024;
    constexpr int kStepBytes = 64 * 1024;
    mallopt(M_MMAP_THRESHOLD, kMappedFromBytes);
    mallopt(M_TOP_PAD, kStepBytes);
    mallopt(M_TRIM_THRESHOLD, kStepBytes);
}

}  // namespace platform
