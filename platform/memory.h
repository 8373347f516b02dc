#pragma once

namespace platform {

/// Makes the allocator return large blocks to the system when they are freed, so that reading a
/// long line does not leave the resident memory larger. Called once, before anything large is
/// allocated.
void returnFreedMemory();

}  // namespace platform
