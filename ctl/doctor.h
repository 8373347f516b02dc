#pragma once

#include "ctl/codex_home.h"
#include "ctl/commands.h"
#include "platform/confinement.h"

namespace ctl {

/// Shows every place that the program reads, what was found there, and what `watch` would show.
/// Returns kAnswered when a task can be shown, else kNothingToShow.
int examine(Sources& sources, const CodexHome& home, const ORVConfinement& confinement);

}  // namespace ctl
