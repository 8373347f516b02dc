// Draws a history for a terminal: decides which events share a column and which characters show it.
// Tests: tests/shells/history_test.cpp.

#include "shells/history/history_plot.h"

#include <algorithm>
#include <cmath>

namespace history {
namespace {

/// Larger than any screen, so that no size can take all memory.
constexpr int kMostColumns = 2000;
constexpr int kMostRows = 200;

constexpr std::size_t kDateLength = std::string_view("2026-11-24").size();

struct Glyphs {
    std::vector<std::string_view> fills;  ///< A cell filled from one part to all of its height.
    std::string_view compaction, arrow, axis, corner, side, tick;
};

const Glyphs& glyphsFor(bool unicode) {
    static const Glyphs kUnicode = {
        {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"}, "┊", "▼", "─", "└", "│", "┤"};
    static const Glyphs kASCII = {{".", ":", "#"}, "|", "v", "-", "+", "|", "+"};
    return unicode ? kUnicode : kASCII;
}

/// Returns "2026-11-24 16:45" for "2026-11-24T16:45:21.002Z", and "" for a text of another form.
std::string minuteOf(std::string_view timestamp) {
    constexpr std::string_view kForm = "0000-00-00T00:00:";
    const std::string_view begin = timestamp.substr(0, kForm.size());
    const bool hasForm = std::equal(
        begin.begin(), begin.end(), kForm.begin(), kForm.end(),
        [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; });
    if (!hasForm) {
        return {};
    }
    std::string minute(begin.substr(0, kForm.size() - 1));
    minute[kDateLength] = ' ';
    return minute;
}

/// Returns both ends of the span in exactly this many columns. When they do not fit, only the times
/// or only the days stand there; the row is "" when even these do not fit.
std::string timeRow(Span span, std::size_t columns) {
    std::string& first = span.first;
    std::string& last = span.last;
    const auto fits = [&] {
        const std::size_t gap = first.empty() || last.empty() ? 0 : 1;
        return first.size() + gap + last.size() <= columns;
    };
    if (!fits()) {
        const bool isOneDay = first.empty() || last.empty() ||
                              first.substr(0, kDateLength) == last.substr(0, kDateLength);
        for (std::string* time : {&first, &last}) {
            if (!time->empty()) {
                *time = isOneDay ? time->substr(kDateLength + 1) : time->substr(5, 5);
            }
        }
    }
    if (!fits()) {
        return {};
    }
    return last.empty() ? first
                        : first + std::string(columns - first.size() - last.size(), ' ') + last;
}

/// Widens the columns to exactly this many cells, each to the same number or one more. A mark
/// stands in the first cell of its column.
std::vector<Column> spread(const std::vector<Column>& columns, std::size_t width) {
    std::vector<Column> cells(width);
    for (std::size_t x = width; x-- > 0;) {
        const std::size_t i = x * columns.size() / width;
        const bool isFirst = x == 0 || (x - 1) * columns.size() / width != i;
        cells[x] = {columns[i].level, columns[i].isCompacted && isFirst};
    }
    return cells;
}

/// Returns one row of bars. `row` counts from 0 at the bottom.
std::string bars(const std::vector<Column>& cells, int row, int rows, const Glyphs& glyphs) {
    const int parts = static_cast<int>(glyphs.fills.size());
    const auto partsOf = [&](double level) {  // At least one: every point can be seen.
        return std::max(1, static_cast<int>(std::lround(level / 100.0 * rows * parts)));
    };
    std::string text;
    for (const Column& cell : cells) {
        const int filled = std::min(cell.level ? partsOf(*cell.level) - row * parts : 0, parts);
        if (filled > 0) {
            text += glyphs.fills[static_cast<std::size_t>(filled - 1)];
        } else {
            text += cell.isCompacted ? glyphs.compaction : " ";
        }
    }
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// Returns what stands left of a row of bars. A percentage is that of the row's upper edge.
std::string labelOf(int row, int rows, const Glyphs& glyphs) {
    const bool isTop = row == rows - 1;
    if (!isTop && row != (rows + 1) / 2 - 1) {
        return "    " + std::string(glyphs.side);
    }
    return (isTop ? "100%" : " 50%") + std::string(glyphs.tick);
}

}  // namespace

std::vector<Column> thinned(const std::vector<ORVHistoryEvent>& events, std::size_t room) {
    std::vector<Column> steps;
    for (const ORVHistoryEvent& event : events) {
        if (event.isCompaction() || steps.empty() || steps.back().level) {
            steps.emplace_back();
        }
        if (event.usage) {
            steps.back().level = std::clamp(event.usage->percentage(), 0.0, 100.0);
        } else {
            steps.back().isCompacted = true;
        }
    }
    if (steps.size() <= room) {
        return steps;
    }
    std::vector<Column> columns(room);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        Column& column = columns[i * room / steps.size()];
        column.level = std::max(column.level, steps[i].level);
        column.isCompacted = column.isCompacted || steps[i].isCompacted;
    }
    return columns;
}

Span spanOf(const std::vector<ORVHistoryEvent>& events) {
    if (events.empty()) {
        return {};
    }
    Span span = {minuteOf(events.front().at), minuteOf(events.back().at)};
    if (span.last == span.first) {
        span.last.clear();
    }
    return span;
}

std::vector<PlotRow> plot(const std::vector<ORVHistoryEvent>& events, const PlotSize& size) {
    constexpr int kColumnsForLabels = 20;
    constexpr int kRowsForAxis = 3;
    constexpr int kRowsForTimes = 4;
    constexpr int kLabelColumns = 5;
    if (events.empty() || size.columns < 1 || size.rows < 1) {
        return {};
    }
    const Glyphs& drawn = glyphsFor(size.showsUnicode);
    const int columns = std::min(size.columns, kMostColumns);
    const int rows = std::min(size.rows, kMostRows);
    const bool hasAxis = rows >= kRowsForAxis;
    const bool hasLabels = hasAxis && columns >= kColumnsForLabels;
    const int left = hasLabels ? kLabelColumns : 0;
    const auto width = static_cast<std::size_t>(columns - left);
    const std::vector<Column> cells = spread(thinned(events, width), width);
    const std::string times = rows >= kRowsForTimes ? timeRow(spanOf(events), width) : "";

    const int barRows = rows - (hasAxis ? 1 : 0) - (times.empty() ? 0 : 1);
    std::vector<PlotRow> result;
    for (int row = barRows - 1; row >= 0; --row) {
        result.push_back({hasLabels ? labelOf(row, barRows, drawn) : "",
                          bars(cells, row, barRows, drawn), (row + 0.5) / barRows * 100.0});
    }
    if (hasAxis) {
        std::string axis;
        for (const Column& cell : cells) {
            axis += cell.isCompacted ? drawn.arrow : drawn.axis;
        }
        result.push_back({hasLabels ? "  0%" + std::string(drawn.corner) : "", axis, {}});
    }
    if (!times.empty()) {
        result.push_back({std::string(static_cast<std::size_t>(left), ' '), times, {}});
    }
    return result;
}

}  // namespace history
