// Closes what was inherited, and sets glibc's allocator so that it maps large blocks. Measured by
// bench/compare. Tests: tests/ctl/brimletctl_test.cpp.

#include "platform/process.h"

#include <malloc.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

namespace platform {

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
