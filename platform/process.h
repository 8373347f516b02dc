#pragma once

/// What a process does for itself when it begins.
namespace platform {

/// Closes all descriptors above the standard ones that the parent process left open. Called before
/// anything is opened.
void closeInheritedDescriptors();

/// Makes the allocator return large blocks to the system when they are freed, so that reading a
/// long line does not leave the resident memory larger. Called before anything large is allocated.
void returnFreedMemory();

}  // namespace platform
