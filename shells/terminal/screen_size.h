#pragma once

#include "shells/terminal/screen.h"

namespace terminal {

/// Returns the size of the terminal that standard output is, and 80 by 24 when it is not a
/// terminal. Sets the process's locale for characters, so that columns can be counted.
Screen screenOfOutput();

}  // namespace terminal
