#pragma once

#include "ctl/codex_home.h"
#include "ctl/commands.h"

namespace ctl {

/// Whether the system holds this process to what it promised.
struct ConfinementState {
    bool filtersCalls = false;   ///< Its system calls, by a list of those that are allowed.
    bool limitsWriting = false;  ///< Where it may write.
};

/// What was looked at, what was found, and what `watch` would show. 0 when a task can be shown.
int examine(Sources& sources, const CodexHome& home, const ConfinementState& confinement);

}  // namespace ctl
