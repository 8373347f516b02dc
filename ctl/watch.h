#pragma once

#include <string>

#include "ctl/arguments.h"

namespace ctl {

/// Runs the whole application on this terminal, or as lines on standard output, until it is
/// stopped. Returns the exit status. When a read of a file hangs at that moment, the process is
/// ended by _exit instead.
int watch(const Arguments& arguments, const std::string& codexHome);

}  // namespace ctl
