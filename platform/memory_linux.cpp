#include "platform/memory.h"

#include <malloc.h>

namespace platform {

void returnFreedMemory() {
    // Setting the first also keeps glibc from raising it whenever a larger block is freed.
    constexpr int kMappedFromBytes = 64 * 1024;
    constexpr int kPageBytes = 4 * 1024;
    mallopt(M_MMAP_THRESHOLD, kMappedFromBytes);
    mallopt(M_TOP_PAD, kPageBytes);
    mallopt(M_TRIM_THRESHOLD, kPageBytes);
}

}  // namespace platform
