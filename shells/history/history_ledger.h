#pragma once

#include <string>
#include <vector>

#include "app/compaction_ledger.h"
#include "shells/history/history_plot.h"

namespace history {

/// Returns a line for each of the newest compactions, the newest last: its number, its time, the
/// usage before and after it, the change in tokens, and the time and the answers since the one
/// before; "--" stands where a figure is not known. There are at most `size.rows` lines, and none
/// is wider than `size.columns`: what people miss least is left out of all of them together.
std::vector<std::string> ledger(const std::vector<app::Compaction>& compactions,
                                const PlotSize& size);

}  // namespace history
