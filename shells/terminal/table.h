#pragma once

#include <optional>
#include <vector>

#include "app/ORVTaskView.h"
#include "l10n/languages.h"
#include "shells/terminal/screen.h"

/// Tasks as rows of text.
namespace terminal {

/// Returns one line about a task, "C3 · 47%  Fix the tests", in UTF-8 for any terminal or reader.
Row taskRow(const ORVTaskView& view);

/// How a table is shown in addition to its tasks.
struct TableLook {
    const ORVWords& words;
    ORVClock::TimePoint now;
    bool hasMarks = false;  ///< Whether tasks that changed a moment ago are marked.
    std::optional<std::size_t> selected = {};  ///< The place of the selected task.
};

/// Returns a head row and a row for each task from `first` on, at most `most` of them. Columns are
/// as wide as all tasks of the list need. On a narrow screen the number of helpers goes first, then
/// the model, the folder, the gauge, the age and the identifier; the title takes the rest.
std::vector<Row> table(const std::vector<ORVTaskView>& tasks, std::size_t first, std::size_t most,
                       const TableLook& look, const Screen& screen);

/// Returns a row for each rate limit, and one that tells how old the figures are. With a screen,
/// they have gauges and are cut to its width; without one, they are text for any reader.
std::vector<Row> limitRows(const ORVAccountLimits& limits, const TableLook& look,
                           const Screen* screen);

}  // namespace terminal
