// Sets glibc's allocator so that it maps large blocks. Measured by bench/compare.

#include "platform/memory.h"

#include <malloc.h>

namespace platform {

void returnFreedMemory() {
    // glibc raises the first threshold when a larger block is freed, unless one of these is set.
    constexpr int kMappedFromBytes = 64 * 1024;
    constexpr int kPageBytes = 4 * 1024;
    mallopt(M_MMAP_THRESHOLD, kMappedFromBytes);
    mallopt(M_TOP_PAD, kPageBytes);
    mallopt(M_TRIM_THRESHOLD, kPageBytes);
}

}  // namespace platform
