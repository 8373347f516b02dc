// The table of tasks and the line about one. Tests: tests/shells/table_test.cpp.

#include "shells/terminal/table.h"

#include <algorithm>
#include <array>

#include "app/figures.h"
#include "l10n/languages.h"
#include "text/bytes.h"
#include "text/unicode.h"

namespace terminal {
namespace {

constexpr int kGap = 2;
constexpr int kWidestText = 20;  ///< Of identifiers, folders and models.
constexpr std::chrono::seconds kMoment(30);

enum Column : std::size_t { id, status, gauge, age, folder, model, helpers, title, kColumns };

/// A column that is left out where the title would have fewer columns than this.
struct Droppable {
    Column column;
    int leastTitle;
};
constexpr Droppable kDroppable[] = {{helpers, 24}, {model, 24}, {folder, 12},
                                    {gauge, 12},   {age, 12},   {id, 12}};

using Cells = std::array<std::string, kColumns>;
using Widths = std::array<int, kColumns>;

Cells headOf(const ORVWords& words, const Screen& screen) {
    const auto shown = [&](std::string_view text) { return terminal::shown(text, screen); };
    return {shown(words.id),          shown(words.status), "",
            shown(words.age),         shown(words.folder), shown(words.model),
            shown(words.helperCount), shown(words.title)};
}

std::string titleOf(const ORVTaskView& task) {
    if (!task.snapshot) {
        return "";
    }
    const std::string name = task.helperName.value_or("");
    return (task.isHelper ? "  " : "") + name + (name.empty() ? "" : "  ") + task.snapshot->title();
}

std::string folderOf(const ORVTaskView& task) {
    std::string_view path = task.folder ? *task.folder : std::string_view();
    while (path.size() > 1 && path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return std::string(path == "/" ? path : text::lastPathComponent(path));
}

/// The gauge and the title, on which no width depends, take most of the time, and are left out
/// where the task has no row.
Cells cellsOf(const ORVTaskView& task, bool hasRow, const TableLook& look, const Screen& screen) {
    const auto shown = [&](std::string_view text) { return terminal::shown(text, screen); };
    const std::string unread = task.isRead ? "--" : "…";
    return {shown(task.shortID),
            shown(task.snapshot ? app::statusTitle(*task.snapshot).text() : unread),
            hasRow ? shown(app::bar(task.percentage().value_or(0))) : "",
            app::ageText(app::age(task.changedAt, look.now)),
            shown(folderOf(task)),
            shown(task.agent ? task.agent->model.value_or("") : ""),
            task.helpers > 0 ? std::to_string(task.helpers) : "",
            hasRow ? shown(titleOf(task)) : ""};
}

Widths widthsFor(const std::vector<Cells>& rows, int columns) {
    Widths widths{};
    for (const Cells& cells : rows) {
        for (std::size_t c = 0; c < kColumns; ++c) {
            widths[c] = std::max(widths[c], textColumns(cells[c]));
        }
    }
    for (const Column column : {id, folder, model}) {
        widths[column] = std::min(widths[column], kWidestText);
    }
    widths[status] = std::min(widths[status], columns);
    // A column in which only the head has something is of no use.
    for (const Column column : {id, folder, model, helpers}) {
        const bool isEmpty = std::all_of(rows.begin() + 1, rows.end(),
                                         [&](const Cells& cells) { return cells[column].empty(); });
        widths[column] = isEmpty ? 0 : widths[column];
    }
    const auto rest = [&] {
        int used = 0;
        for (std::size_t c = 0; c < title; ++c) {
            used += widths[c] > 0 ? widths[c] + kGap : 0;
        }
        return columns - used;
    };
    for (const auto& [column, leastTitle] : kDroppable) {
        widths[column] = rest() < leastTitle ? 0 : widths[column];
    }
    widths[title] = std::max(0, rest());
    return widths;
}

/// Returns the status in two pieces, of which the second has the colour of the percentage.
void addStatus(Row& row, const std::string& text, int width, app::Fullness fullness,
               const Screen& screen) {
    const std::string cell = fitted(text, width, screen);
    const std::size_t usage = std::min(text.rfind(' ') + 1, cell.size());
    row.push_back({cell.substr(0, usage)});
    row.push_back({cell.substr(usage), {.fullness = fullness}});
}

Row rowOf(const Cells& cells, const Widths& widths, app::Fullness fullness, bool isHead,
          const Screen& screen) {
    Row row;
    for (std::size_t c = 0; c < kColumns; ++c) {
        if (widths[c] == 0) {
            continue;
        }
        row.push_back({row.empty() ? "" : repeated(" ", kGap)});
        if (c == status) {
            addStatus(row, cells[c], widths[c], fullness, screen);
        } else {
            Style style = {.isDimmed = c == id && !isHead, .isBold = c == title && !isHead};
            style.fullness = c == gauge ? fullness : app::Fullness::unknown;
            row.push_back({fitted(cells[c], widths[c], screen), style});
        }
    }
    if (isHead) {
        for (Piece& piece : row) {
            piece.style = {.isDimmed = true};
        }
    }
    return row;
}

}  // namespace

Row taskRow(const ORVTaskView& view) {
    const app::StatusTitle status = app::statusTitle(*view.snapshot);
    return {{status.compactions + " · "},
            {status.usage, {.fullness = app::fullnessOf(view.percentage())}},
            {"  " + text::forTerminal(view.snapshot->title())}};
}

std::vector<Row> table(const std::vector<ORVTaskView>& tasks, std::size_t first, std::size_t most,
                       const TableLook& look, const Screen& screen) {
    std::vector<Cells> cells = {headOf(look.words, screen)};
    cells.reserve(tasks.size() + 1);
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        cells.push_back(cellsOf(tasks[i], i >= first && i - first < most, look, screen));
    }
    const int markColumns = look.hasMarks ? 2 : 0;
    const Widths widths = widthsFor(cells, screen.columns - markColumns);
    const std::string noMark = repeated(" ", markColumns);
    Row head = rowOf(cells[0], widths, app::Fullness::unknown, true, screen);
    head.insert(head.begin(), Piece{noMark});
    std::vector<Row> rows = {std::move(head)};
    for (std::size_t i = first; i < std::min(tasks.size(), first + most); ++i) {
        const app::Fullness fullness = app::fullnessOf(tasks[i].percentage());
        Row row = rowOf(cells[i + 1], widths, fullness, false, screen);
        const bool isMarked = look.hasMarks && app::age(tasks[i].changedAt, look.now) < kMoment;
        row.insert(row.begin(), Piece{isMarked ? shown("• ", screen) : noMark});
        if (look.selected == i) {
            for (Piece& piece : row) {
                piece.style = {.isReversed = true};
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<Row> limitRows(const ORVAccountLimits& limits, const TableLook& look,
                           const Screen* screen) {
    std::vector<Row> rows;
    for (const ORVRateLimit& limit : limits.rateLimits) {
        const auto used = app::usedPercent(limit, look.now);
        const app::Fullness fullness = app::fullnessOf(used);
        const std::string reset = app::resetText(limit, look.now);
        Row row = {{app::windowText(limit) + "  "}};
        if (screen) {
            row.front().text = fitted(app::windowText(limit), 6, *screen);
            row.push_back({app::bar(used.value_or(0)), {.fullness = fullness}});
            row.push_back({"  "});
        }
        row.push_back({(used ? app::wholePercent(*used) : "--") + "%", {.fullness = fullness}});
        row.push_back({reset.empty() ? "" : "  " + l10n::filled(look.words.resetsAt, {reset})});
        rows.push_back(std::move(row));
    }
    const std::string age = app::ageText(app::age(limits.date, look.now));
    rows.push_back({{l10n::filled(look.words.asOf, {age}), {.isDimmed = true}}});
    for (Row& row : rows) {
        if (screen) {
            show(row, *screen);
        }
    }
    return rows;
}

}  // namespace terminal
