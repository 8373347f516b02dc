#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/compaction_ledger.h"
#include "l10n/languages.h"
#include "sessions/ORVSessionSnapshot.h"

/// Draws a task's history: as a plot and a ledger of text, and as a picture.
namespace history {

/// The room that a plot has, and the characters and words that may stand in it: English ones where
/// it is plain ASCII.
struct PlotSize {
    int columns = 80;
    int rows = 12;
    bool showsUnicode = true;  ///< Otherwise the plot is plain ASCII.
    const ORVWords& words = l10n::kEnglishWords;
};

/// One row of a plot. Label and text together fit into the plot's columns.
struct PlotRow {
    std::string label;  ///< The axis at the left and its percentage; "" when there is no room.
    std::string text;   ///< Without spaces at its end.

    /// The percentage at half the height of the row, for the colour of its text. None for the axis
    /// below the bars and for the row of times and counts.
    std::optional<double> level;
};

/// Returns the usage from 0 to 100 % as bars, the oldest at the left, with marks for compactions.
/// When there is room, an axis and a row with the first and last time, the number of answers and
/// that of compactions stand below. The rows fill the room; without events there are no rows.
std::vector<PlotRow> plot(const std::vector<ORVHistoryEvent>& events, const PlotSize& size);

/// A column of a picture. All columns have the same width.
struct Column {
    /// The highest usage among the column's points, 0 to 100 percent. None when no usage was
    /// recorded after its compaction.
    std::optional<double> level;

    /// Whether the conversation was compacted before one of the column's points.
    bool isCompacted = false;
};

/// Returns the events in order, as at most `room` columns; `room` is 1 or more. When all fit, each
/// usage has a column of its own, which also holds the compaction right before it.
std::vector<Column> thinned(const std::vector<ORVHistoryEvent>& events, std::size_t room);

/// Where compactions would take more than one in `distance` columns, removes marks until each is at
/// least as many columns from the one before; the first stays.
void thinMarks(std::vector<Column>& columns, std::size_t distance);

/// How much a history holds.
struct Tally {
    std::size_t answers = 0;
    std::size_t compactions = 0;
};
Tally tallyOf(const std::vector<ORVHistoryEvent>& events);

/// Returns "1 answer" or "38 answers".
std::string counted(std::size_t count, std::string_view one, std::string_view several);

/// How `strftime` writes "2026-11-24 16:45".
inline constexpr const char* kMinutePattern = "%Y-%m-%d %H:%M";

/// The beginning and the end of a history in the user's time zone. Either is "" when its record has
/// no ISO 8601 time stamp; the end also when both have the same text.
struct Span {
    std::string first;
    std::string last;
};
Span spanOf(const std::vector<ORVHistoryEvent>& events, const char* pattern);

/// Returns a line for each of the newest compactions, the newest last: its number, its time, the
/// usage before and after it, the change in tokens, and the time and the answers since the one
/// before; "--" stands where a figure is not known. There are at most `size.rows` lines, and none
/// is wider than `size.columns`: what people miss least is left out of all of them together.
std::vector<std::string> ledger(const std::vector<app::Compaction>& compactions,
                                const PlotSize& size);

/// Returns the history as an SVG document for light and dark pages. `title` may hold any bytes; a
/// title that is too long is cut in the picture and stands whole in the document's title.
std::string svg(const std::vector<ORVHistoryEvent>& events, const std::string& title);

}  // namespace history
