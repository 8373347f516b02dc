#pragma once

namespace ctl {

/// The whole application in this terminal or on these descriptors, until it is told to end. Returns
/// the exit status. Leaves by _exit while a read of a file hangs.
int watchAsJSON();

/// On a terminal the status item and its menu; else a line of text whenever it changed.
int watch();

}  // namespace ctl
