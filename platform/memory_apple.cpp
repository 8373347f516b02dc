#include "platform/memory.h"

namespace platform {

/// The system's allocator does so by itself.
void returnFreedMemory() {}

}  // namespace platform
