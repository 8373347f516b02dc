#pragma once

#include <string>
#include <vector>

#include "platform/clock.h"
#include "sessions/ORVSessionSnapshot.h"

namespace ctl {

struct TaskRow {
    ORVSessionSnapshot snapshot;
    std::string folder;  ///< "" where it is not known.
};

/// A table for this terminal: status, a gauge, age, the folder's name and the title, cut so that no
/// line is wider than the terminal.
std::string taskTable(const std::vector<TaskRow>& rows, ORVClock::TimePoint now, bool isColored);

}  // namespace ctl
