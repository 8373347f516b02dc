#pragma once

#include <string>

#include "sessions/ORVSessionSnapshot.h"

namespace app {

/// Returns the text in the menu bar for a task, which is the same in every language: the number of
/// compactions and how much of the context window is in use, "C3 · 47%". A count that cannot be
/// trusted is shown as "C–", a usage that is not known as "--%".
std::string statusItemTitle(const ORVSessionSnapshot& snapshot);

/// Returns a percentage rounded to a whole number, as the title shows it.
std::string wholePercent(double percentage);

/// Returns ten cells that are filled in proportion: "█████░░░░░".
std::string bar(double percentage);

/// Returns the usage that may be shown; null while there is none, or none that can be trusted.
const ORVContextUsage* shownUsage(const ORVSessionSnapshot& snapshot);

}  // namespace app
