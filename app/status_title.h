#pragma once

#include <string>

#include "sessions/ORVSessionSnapshot.h"

namespace app {

/// The text in the menu bar for a task, the same in every language: the number of compactions and
/// the share of the context window in use, "C3 · 47%". A count that cannot be trusted is "C–", a
/// share that is not known "--%".
std::string statusItemTitle(const ORVSessionSnapshot& snapshot);

/// A percentage without its fraction, as the title shows it.
std::string wholePercent(double percentage);

/// The usage of a snapshot that may be shown; null while there is none to trust.
const ORVContextUsage* shownUsage(const ORVSessionSnapshot& snapshot);

}  // namespace app
