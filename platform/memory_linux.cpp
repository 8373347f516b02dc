#include "platform/memory.h"

#include <malloc.h>

namespace platform {

void returnFreedMemory() {
    // Setting it also keeps glibc from raising it whenever a larger block is freed.
    constexpr int kMappedFromBytes = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, kMappedFromBytes);
}

}  // namespace platform
