#pragma once

#include "shells/terminal/screen.h"

namespace terminal {

/// What standard output can show of text that is written once: the terminal's size, or 80 by 24
/// where it is none. Sets the process's locale of characters, so that columns can be counted.
Screen screenOfOutput();

}  // namespace terminal
