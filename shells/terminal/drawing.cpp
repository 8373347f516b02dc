// Bars, frames, plots and lists of keys for a whole screen. Tests: tests/shells/terminal_test.cpp.

#include <algorithm>
#include <cmath>
#include <utility>

#include "shells/history/history.h"
#include "shells/terminal/screen.h"

namespace terminal {

Row gaugeBar(const std::string& title, std::optional<double> percentage, const Screen& screen) {
    const std::string padded = " " + shown(title, screen) + " ";
    const std::string text = fitted(repeated(" ", screen.columns - textColumns(padded)) + padded,
                                    screen.columns, screen);
    const double share = std::clamp(percentage.value_or(0), 0.0, 100.0) / 100;
    const std::string_view used =
        beginning(text, static_cast<int>(std::lround(share * screen.columns)));
    const app::Fullness fullness = app::fullnessOf(percentage);
    return {{std::string(used), {.isReversed = true, .fullness = fullness}},
            {text.substr(used.size()), {.isBold = true, .fullness = fullness}}};
}

int widestOf(const std::vector<Line>& lines) {
    int widest = 0;
    for (const Line& line : lines) {
        widest = std::max(widest, textColumns(line.left) + textColumns(line.right));
    }
    return widest;
}

std::vector<Row> framed(const std::vector<Line>& lines, int inner, bool hasRules,
                        const Screen& screen) {
    inner = std::max(0, std::min(inner, screen.columns - 2));
    const std::string indent = repeated(" ", screen.columns - inner - 2);
    const auto rule = [&](std::string_view left, std::string_view right) -> Row {
        const std::string_view middle = screen.showsUnicode ? "─" : "-";
        return {{indent + std::string(screen.showsUnicode ? left : "+") + repeated(middle, inner) +
                 std::string(screen.showsUnicode ? right : "+")}};
    };
    std::vector<Row> rows;
    if (hasRules) {
        rows.push_back(rule("┌", "┐"));
    }
    for (const Line& line : lines) {
        if (line.isRule) {
            rows.push_back(rule("├", "┤"));
            continue;
        }
        const std::string side = screen.showsUnicode ? "│" : "|";
        const int rightColumns = std::min(textColumns(line.right), inner);
        Piece left = {fitted(line.left, inner - rightColumns, screen), line.style};
        Piece right = {fitted(line.right, rightColumns, screen), {.isDimmed = true}};
        if (line.isSelected) {
            left.style.isReversed = right.style.isReversed = true;
            right.style.isDimmed = line.style.isDimmed;
        }
        rows.push_back({{indent + side}, std::move(left), std::move(right), {side}});
    }
    if (hasRules) {
        rows.push_back(rule("└", "┘"));
    }
    return rows;
}

std::vector<Row> plotRows(const ORVHistory& history, int rows, const ORVWords& words,
                          const Screen& screen) {
    constexpr int kFewest = 4;
    std::vector<Row> result;
    if (rows < kFewest || history.empty()) {
        return result;
    }
    for (const history::PlotRow& row :
         history::plot(history, {screen.columns, rows, screen.showsUnicode, words})) {
        result.push_back({{row.label}, {row.text, {.fullness = app::fullnessOf(row.level)}}});
    }
    return result;
}

std::vector<Row> ledgerRows(const std::vector<app::Compaction>& compactions, int rows,
                            const ORVWords& words, const Screen& screen) {
    std::vector<Row> result;
    for (const std::string& line :
         history::ledger(compactions, {screen.columns, rows, screen.showsUnicode, words})) {
        result.push_back({{line}});
    }
    return result;
}

std::vector<Line> keyLines(const std::vector<Key>& keys, const Screen& screen) {
    std::vector<Line> lines;
    for (const auto& [deed, key] : keys) {
        lines.push_back({" " + shown(deed, screen) + "   ", shown(key, screen) + " ", {}});
    }
    return lines;
}

Row keyHint(const std::vector<Key>& keys, const Screen& screen) {
    std::string text;
    for (const auto& [deed, key] : keys) {
        text += (text.empty() ? " " : " · ") + key + " " + deed;
    }
    return {{shown(text, screen), {.isDimmed = true}}};
}

void fitScreen(std::vector<Row>& rows, const Screen& screen) {
    if (rows.size() > static_cast<std::size_t>(screen.rows)) {
        rows.resize(static_cast<std::size_t>(screen.rows));
    }
    for (Row& row : rows) {
        fit(row, screen.columns, screen);
    }
}

}  // namespace terminal
