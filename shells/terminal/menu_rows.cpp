// Lays out the bar, the menu and the plot on a screen, and decides what a low screen leaves out.
// Tests: tests/shells/terminal_test.cpp.

#include "shells/terminal/menu_rows.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "shells/history/history_plot.h"
#include "shells/terminal/screen_text.h"

namespace terminal {
namespace {

constexpr int kRowsOfScreenWithPlot = 24;
constexpr int kFewestRowsOfPlot = 4;
constexpr int kMostRowsOfPlot = 12;

/// Draws the menu bar, which is also a gauge: it is filled from the left in proportion to the
/// context window.
Row bar(const ORVStatusItem& statusItem, const Screen& screen) {
    const std::string title = " " + shown(statusItem.title, screen) + " ";
    const std::string text =
        fitted(repeated(" ", screen.columns - textColumns(title)) + title, screen.columns, screen);
    const double share = std::clamp(statusItem.percentage.value_or(0), 0.0, 100.0) / 100;
    const std::string_view used =
        beginning(text, static_cast<int>(std::lround(share * screen.columns)));
    const Fullness fullness = fullnessOf(statusItem.percentage);
    return {{std::string(used), {.isReversed = true, .fullness = fullness}},
            {text.substr(used.size()), {.isBold = true, .fullness = fullness}}};
}

/// Draws the frame of the menu at the right edge of the screen.
class Frame {
public:
    Frame(const std::vector<Line>& lines, const Screen& screen) : screen_(screen) {
        for (const Line& line : lines) {
            inner_ = std::max(inner_, textColumns(line.left) + textColumns(line.right));
        }
        inner_ = std::max(0, std::min(inner_, screen.columns - 2));
        indent_ = repeated(" ", screen.columns - inner_ - 2);
    }

    Row top() const { return screen_.showsUnicode ? rule("┌", "┐") : rule("+", "+"); }
    Row separator() const { return screen_.showsUnicode ? rule("├", "┤") : rule("+", "+"); }
    Row bottom() const { return screen_.showsUnicode ? rule("└", "┘") : rule("+", "+"); }

    Row around(const Line& line) const {
        const std::string side = screen_.showsUnicode ? "│" : "|";
        const int rightColumns = std::min(textColumns(line.right), inner_);
        Piece left = {fitted(line.left, inner_ - rightColumns, screen_), line.style};
        Piece right = {fitted(line.right, rightColumns, screen_), {.isDimmed = true}};
        if (line.need == Need::selected) {
            left.style.isReversed = right.style.isReversed = true;
            right.style.isDimmed = line.style.isDimmed;
        }
        return {{indent_ + side, {}}, std::move(left), std::move(right), {side, {}}};
    }

private:
    Row rule(std::string_view left, std::string_view right) const {
        const std::string_view middle = screen_.showsUnicode ? "─" : "-";
        return {{indent_ + std::string(left) + repeated(middle, inner_) + std::string(right), {}}};
    }

    const Screen& screen_;
    int inner_ = 0;
    std::string indent_;
};

/// Removes the least needed lines, the lowest of them first, until the others have room.
void leaveOut(std::vector<Line>& lines, int room) {
    while (static_cast<int>(lines.size()) > room) {
        const auto least =
            std::min_element(lines.rbegin(), lines.rend(),
                             [](const Line& a, const Line& b) { return a.need < b.need; });
        lines.erase(std::next(least).base());
    }
}

/// Adds the task's history below the menu, with a free row before it and one after it.
void addPlot(std::vector<Row>& rows, const View& view, const Screen& screen) {
    const int room = screen.rows - static_cast<int>(rows.size()) - 2;
    if (screen.rows < kRowsOfScreenWithPlot || room < kFewestRowsOfPlot || view.history.empty()) {
        return;
    }
    rows.emplace_back();
    for (const history::PlotRow& row :
         history::plot(view.history,
                       {screen.columns, std::min(room, kMostRowsOfPlot), screen.showsUnicode})) {
        rows.push_back({{row.label, {}}, {row.text, {.fullness = fullnessOf(row.level)}}});
    }
}

/// Cuts the row to the screen's width, or fills it with spaces.
void fit(Row& row, const Screen& screen) {
    int columns = screen.columns;
    for (Piece& piece : row) {
        if (textColumns(piece.text) > columns) {
            piece.text = fitted(piece.text, columns, screen);
        }
        columns -= textColumns(piece.text);
    }
    row.push_back({repeated(" ", columns), {}});
    std::erase_if(row, [](const Piece& piece) { return piece.text.empty(); });
}

}  // namespace

std::vector<Row> menuRows(const ORVStatusItem& statusItem, const View& view, const Screen& screen) {
    std::vector<Line> lines = view.showsKeys ? keyLines(*statusItem.menu, view, screen)
                                             : menuLines(statusItem, view, screen);
    const Frame frame(lines, screen);
    const int free = screen.rows - 1 - static_cast<int>(lines.size());
    const bool hasHint = free > 0;
    const bool hasRules = free > 2;
    leaveOut(lines, screen.rows - 1);

    std::vector<Row> rows = {bar(statusItem, screen)};
    if (hasRules) {
        rows.push_back(frame.top());
    }
    for (const Line& line : lines) {
        rows.push_back(line.need == Need::separator ? frame.separator() : frame.around(line));
    }
    if (hasRules) {
        rows.push_back(frame.bottom());
    }
    if (hasHint) {
        addPlot(rows, view, screen);
        rows.resize(static_cast<std::size_t>(screen.rows - 1));
        rows.push_back({{keyHint(view, screen), {.isDimmed = true}}});
    }
    for (Row& row : rows) {
        fit(row, screen);
    }
    return rows;
}

}  // namespace terminal
