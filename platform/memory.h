#pragma once

namespace platform {

/// Has the allocator give large blocks back to the system when they are freed, so that reading a
/// long line leaves no trace in the resident memory. Called once, before anything large is
/// allocated.
void returnFreedMemory();

}  // namespace platform
