// Draws a history for a terminal: decides which events share a column and which characters show it.
// Tests: tests/shells/history_test.cpp.

#include <algorithm>
#include <cmath>

#include "shells/history/history.h"
#include "text/timestamps.h"
#include "text/unicode.h"

namespace history {
namespace {

/// Larger than any screen, so that no size can take all memory.
constexpr int kMostColumns = 2000;
constexpr int kMostRows = 200;

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

struct Caption {
    Span span;
    std::string counts;
};

/// Returns the caption in at most this many columns, with the counts between the times, and "" when
/// it does not fit.
std::string spreadOut(const Caption& caption, int columns) {
    constexpr int kGap = 2;
    const auto& [span, counts] = caption;
    const int middle = text::columnsOf(counts);
    const int left = span.first.empty() ? 0 : static_cast<int>(span.first.size()) + kGap;
    const int right = span.last.empty() ? 0 : static_cast<int>(span.last.size()) + kGap;
    if (left + middle + right > columns) {
        return {};
    }
    const int at = std::clamp((columns - middle) / 2, left, columns - right - middle);
    const auto spaces = [](int count) { return std::string(static_cast<std::size_t>(count), ' '); };
    std::string text = span.first;
    text += spaces(at - static_cast<int>(text.size())) + counts;
    if (!span.last.empty()) {
        text += spaces(columns - at - middle - static_cast<int>(span.last.size())) + span.last;
    }
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// Returns the row of times and counts. Where it does not fit, first the word for compactions is
/// left out, then the days or the times of day, then both times, then the compactions; it is ""
/// when even the answers do not fit.
std::string captionRow(const std::vector<ORVHistoryEvent>& events, int columns,
                       const PlotSize& size) {
    const Tally tally = tallyOf(events);
    const ORVWords& words = size.words;
    const std::string answers = counted(tally.answers, words.answer, words.answers);
    const Caption least = {{}, answers};
    Caption brief = least;
    Caption full = least;
    if (tally.compactions > 0) {
        const std::string mark = size.showsUnicode ? " · ▼ " : ", v ";
        brief.counts += mark + std::to_string(tally.compactions);
        full.counts += mark + counted(tally.compactions, words.compaction, words.compactions);
    }
    const Span days = spanOf(events, "%Y-%m-%d");
    const bool isOneDay = days.first.empty() || days.last.empty();
    for (const char* pattern : {kMinutePattern, isOneDay ? "%H:%M" : "%m-%d", ""}) {
        for (Caption* caption : {&full, &brief}) {
            caption->span = spanOf(events, pattern);
            std::string row = spreadOut(*caption, columns);
            if (!row.empty()) {
                return row;
            }
        }
    }
    return spreadOut(least, columns);
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

void thinMarks(std::vector<Column>& columns, std::size_t distance) {
    const auto marks = static_cast<std::size_t>(std::count_if(
        columns.begin(), columns.end(), [](const Column& column) { return column.isCompacted; }));
    if (marks * distance <= columns.size()) {
        return;
    }
    std::size_t next = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].isCompacted = columns[i].isCompacted && i >= next;
        next = columns[i].isCompacted ? i + distance : next;
    }
}

Tally tallyOf(const std::vector<ORVHistoryEvent>& events) {
    Tally tally;
    for (const ORVHistoryEvent& event : events) {
        event.isCompaction() ? ++tally.compactions : tally.answers += event.answers;
    }
    return tally;
}

std::string counted(std::size_t count, std::string_view one, std::string_view several) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : several);
}

Span spanOf(const std::vector<ORVHistoryEvent>& events, const char* pattern) {
    const auto textOf = [&](const ORVHistoryEvent& event) {
        const auto time = text::timeOf(event.at);
        return time ? text::localTime(*time, pattern) : "";
    };
    if (events.empty()) {
        return {};
    }
    Span span = {textOf(events.front()), textOf(events.back())};
    if (span.last == span.first) {
        span.last.clear();
    }
    return span;
}

std::vector<PlotRow> plot(const std::vector<ORVHistoryEvent>& events, const PlotSize& size) {
    constexpr int kColumnsForLabels = 20;
    constexpr int kRowsForAxis = 3;
    constexpr int kRowsForCaption = 4;
    constexpr int kLabelColumns = 5;
    constexpr std::size_t kColumnsOfMark = 3;
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
    std::vector<Column> cells = spread(thinned(events, width), width);
    thinMarks(cells, kColumnsOfMark);
    const std::string caption =
        rows >= kRowsForCaption ? captionRow(events, columns - left, size) : "";

    const int barRows = rows - (hasAxis ? 1 : 0) - (caption.empty() ? 0 : 1);
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
    if (!caption.empty()) {
        result.push_back({std::string(static_cast<std::size_t>(left), ' '), caption, {}});
    }
    return result;
}

}  // namespace history
