#pragma once

#include <string>

#include "ctl/arguments.h"

namespace ctl {

/// The whole application on this terminal, or as lines on standard output, until it is told to end.
/// Returns the exit status. Leaves by _exit while a read of a file hangs.
int watch(const Arguments& arguments, const std::string& codexHome);

}  // namespace ctl
