#pragma once

namespace appkit {

/// Shows the status item over made-up data in a temporary folder, checks what a user would see of
/// it, and writes one line a check to standard output. Returns 0 when every check held, else 1. No
/// file and no setting of the user is read or changed.
int selfTest();

}  // namespace appkit
