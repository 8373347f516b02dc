#pragma once

#include "ctl/codex_home.h"
#include "ctl/commands.h"
#include "platform/confinement.h"

namespace ctl {

/// What was looked at, what was found, and what `watch` would show. 0 when a task can be shown.
int examine(Sources& sources, const CodexHome& home, const ORVConfinement& confinement);

}  // namespace ctl
