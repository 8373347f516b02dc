#pragma once

#include <string>
#include <vector>

#include "platform/clock.h"
#include "sessions/ORVSessionSnapshot.h"

namespace ctl {

struct TaskRow {
    ORVSessionSnapshot snapshot;
    std::string folder;  ///< "" when it is not known.
};

/// Returns a table for this terminal with status, gauge, age, folder name and title. No line is
/// wider than the terminal.
std::string taskTable(const std::vector<TaskRow>& rows, ORVClock::TimePoint now, bool isColored);

}  // namespace ctl
