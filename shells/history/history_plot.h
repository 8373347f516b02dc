#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sessions/ORVHistoryEvent.h"

/// A task's history as a picture, without a terminal or a file.
namespace history {

/// How much room a plot has and what may stand in it.
struct PlotSize {
    int columns = 80;
    int rows = 12;
    bool showsUnicode = true;  ///< Else plain ASCII.
};

/// One row of a plot: at most as many columns as there is room for, no space at its end.
struct PlotRow {
    std::string text;

    /// The percentage at half the height of the row, to be coloured by. None for the axis and the
    /// times.
    std::optional<double> level;
};

/// The usage from 0 to 100 % as bars, oldest first, compactions marked; below them, where there is
/// room, an axis and the first and last time. Fills the room; without events there are no rows.
std::vector<PlotRow> plot(const std::vector<ORVHistoryEvent>& events, const PlotSize& size);

/// What stands side by side in a picture, at equal steps.
struct Column {
    /// The highest usage of its points, percent, 0 to 100. None where nothing was counted between
    /// a compaction and the next, or the end.
    std::optional<double> level;

    /// A compaction came right before one of its points, or stands alone.
    bool isCompacted = false;
};

/// The events in order, as at most `room` columns; `room` is 1 or more. Where all fit, each point
/// has a column of its own, with the compaction right before it.
std::vector<Column> thinned(const std::vector<ORVHistoryEvent>& events, std::size_t room);

/// When the history begins and ends, as "2026-11-24 16:45", in the record's own zone. Empty where
/// the record has no ISO 8601 timestamp; the end also where it is the minute of the beginning.
struct Span {
    std::string first;
    std::string last;
};
Span spanOf(const std::vector<ORVHistoryEvent>& events);

}  // namespace history
