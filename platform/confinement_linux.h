#pragma once

#include "platform/confinement.h"

namespace platform {

// Calls of Landlock, which the headers may be too old to name. They have the same number on every
// processor.
inline constexpr int kLandlockCreateRuleset = 444;
inline constexpr int kLandlockAddRule = 445;
inline constexpr int kLandlockRestrictSelf = 446;

/// Refuses the calling thread, and the threads that it starts, every system call that they do not
/// need with these rights (call_filter_linux.cpp). Returns false where the kernel has no filters.
bool filterCalls(const ORVFileRights& rights);

}  // namespace platform
