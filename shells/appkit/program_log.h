#pragma once

#include <string>

namespace appkit {

/// Write a sentence into the system's log, under the subsystem "com.orvellan.brimlet":
///
///     log show --last 1h --predicate 'subsystem == "com.orvellan.brimlet"'
///
/// A sentence must not hold a title or a path of a task, since other users may read the log. Can be
/// called on any thread.
void log(const std::string& sentence);
void logFailure(const std::string& sentence);

}  // namespace appkit
