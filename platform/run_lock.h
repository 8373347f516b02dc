#pragma once

#include <string>

#include "platform/ORVError.h"

namespace platform {

enum class RunLock { held, heldByAnother, unknown };

/// Asks for the lock of which one process at a time holds one, on a file in this folder. It is held
/// until the process ends, however it ends.
///
/// A missing folder is made, for this user alone. The answer is `unknown`, with the system's error
/// in the slot, where the file cannot be made or its file system has no locks.
RunLock lockForRun(const std::string& folder, ORVErrorSlot* error);

}  // namespace platform
