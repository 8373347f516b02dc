#pragma once

#include "shells/terminal/screen.h"

namespace terminal {

/// Returns the size of the terminal on standard output, or 80 by 24 if there is none, and whether
/// text is UTF-8. Sets the process's locale for characters, so that columns can be counted.
Screen screenOfOutput();

}  // namespace terminal
