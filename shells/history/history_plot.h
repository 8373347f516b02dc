#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sessions/ORVHistoryEvent.h"

/// Draws a task's history as rows of text.
namespace history {

/// The room that a plot has, and the characters that may stand in it.
struct PlotSize {
    int columns = 80;
    int rows = 12;
    bool showsUnicode = true;  ///< Otherwise the plot is plain ASCII.
};

/// One row of a plot. Label and text together fit into the plot's columns.
struct PlotRow {
    std::string label;  ///< The axis at the left and its percentage; "" when there is no room.
    std::string text;   ///< Without spaces at its end.

    /// The percentage at half the height of the row, for the colour of its text. None for the axis
    /// below the bars and for the times.
    std::optional<double> level;
};

/// Returns the usage from 0 to 100 % as bars, the oldest at the left, with marks for compactions.
/// When there is room, an axis and the first and last time stand below. The rows fill the room;
/// without events there are no rows.
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

/// The beginning and the end of a history, as "2026-11-24 16:45" in the time zone of the records.
/// Either is "" when its record has no ISO 8601 timestamp; the end also when both are in the same
/// minute.
struct Span {
    std::string first;
    std::string last;
};
Span spanOf(const std::vector<ORVHistoryEvent>& events);

}  // namespace history
