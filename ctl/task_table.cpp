// The table that `tasks` shows on a terminal. On a narrow one the folder is left out first, then
// the gauge, then the age; the title takes the rest. Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/task_table.h"

#include <algorithm>

#include "app/age.h"
#include "app/status_title.h"
#include "ctl/coloring.h"
#include "shells/terminal/screen_size.h"
#include "shells/terminal/screen_text.h"
#include "text/paths.h"

namespace ctl {
namespace {

constexpr int kGaugeCells = 10;  // Those of app::bar.
constexpr int kWidestFolder = 20;
constexpr int kLeastTitle = 12;

std::string gauge(const ORVSessionSnapshot& snapshot) {
    const ORVContextUsage* usage = app::shownUsage(snapshot);
    return app::bar(usage ? usage->percentage() : 0);
}

/// The width of each column; 0 for a column that is left out.
struct Widths {
    int status = 0;
    int gauge = kGaugeCells;
    int age = 0;
    int folder = 0;
    int title = 0;
};

/// The cells of one task at their full width.
struct Cells {
    std::string status;
    std::string gauge;
    std::string age;
    std::string folder;
    std::string title;
};

Cells cellsOf(const TaskRow& row, ORVClock::TimePoint now, const terminal::Screen& screen) {
    const auto shown = [&](std::string_view text) { return terminal::shown(text, screen); };
    return {shown(app::statusItemTitle(row.snapshot)), shown(gauge(row.snapshot)),
            app::ageText(row.snapshot.lastUpdated(), now),
            shown(text::lastPathComponent(row.folder)), shown(row.snapshot.title())};
}

Widths widthsFor(const std::vector<Cells>& table, int columns) {
    Widths widths;
    for (const Cells& cells : table) {
        widths.status = std::max(widths.status, terminal::textColumns(cells.status));
        widths.age = std::max(widths.age, terminal::textColumns(cells.age));
        widths.folder = std::max(widths.folder, terminal::textColumns(cells.folder));
    }
    widths.status = std::min(widths.status, columns);
    widths.folder = std::min(widths.folder, kWidestFolder);
    const auto rest = [&] {
        int used = widths.status;
        for (const int width : {widths.gauge, widths.age, widths.folder}) {
            used += width > 0 ? width + 2 : 0;
        }
        return columns - used - 2;
    };
    for (int* width : {&widths.folder, &widths.gauge, &widths.age}) {
        *width = rest() < kLeastTitle ? 0 : *width;
    }
    widths.title = std::max(0, rest());
    return widths;
}

std::string line(const TaskRow& row, const Cells& cells, const Widths& widths,
                 const terminal::Screen& screen, bool isColored) {
    const auto fitted = [&](const std::string& text, int width) {
        return width > 0 ? "  " + terminal::fitted(text, width, screen) : "";
    };
    const ORVContextUsage* usage = app::shownUsage(row.snapshot);
    const auto colored = [&](const std::string& text) {
        return isColored && usage ? coloredByPercentage(text, usage->percentage()) : text;
    };
    std::string text = terminal::fitted(cells.status, widths.status, screen);
    if (isColored && usage && terminal::textColumns(cells.status) <= widths.status) {
        text.replace(0, cells.status.size(), coloredStatus(cells.status, usage->percentage()));
    }
    text += colored(fitted(cells.gauge, widths.gauge)) + fitted(cells.age, widths.age) +
            fitted(cells.folder, widths.folder);
    std::string title = fitted(cells.title, widths.title);
    title.resize(title.find_last_not_of(' ') + 1);
    return text + (isColored ? bold(title) : title) + '\n';
}

}  // namespace

std::string taskTable(const std::vector<TaskRow>& rows, ORVClock::TimePoint now, bool isColored) {
    const terminal::Screen screen = terminal::screenOfOutput();
    std::vector<Cells> table;
    table.reserve(rows.size());
    for (const TaskRow& row : rows) {
        table.push_back(cellsOf(row, now, screen));
    }
    const Widths widths = widthsFor(table, screen.columns);
    std::string text;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        text += line(rows[i], table[i], widths, screen, isColored);
    }
    return text;
}

}  // namespace ctl
