#include "platform/memory.h"

namespace platform {

/// The system's allocator returns freed memory by itself.
void returnFreedMemory() {}

}  // namespace platform
