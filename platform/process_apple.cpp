// Tests: tests/ctl/brimletctl_test.cpp.

#include "platform/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

namespace platform {

/// What the system's libraries have opened by now would not outlive a start of another program, and
/// stays.
void closeInheritedDescriptors() {
    constexpr int kMost = 64 * 1024;
    for (int i = STDERR_FILENO + 1; i < std::min(getdtablesize(), kMost); ++i) {
        if (fcntl(i, F_GETFD) == 0) {
            close(i);
        }
    }
}

/// The system's allocator returns freed memory by itself.
void returnFreedMemory() {}

}  // namespace platform
