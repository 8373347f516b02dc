// The table of all tasks on a whole terminal: its layout, its selection and its keys.
// Tests: tests/shells/terminal_test.cpp.

#define NCURSES_NOMACROS
#include "shells/terminal/ORVTopPage.h"

#include <ncurses.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "shells/terminal/screen.h"
#include "shells/terminal/table.h"

namespace {

constexpr int kRowsOfScreenWithHistory = 18;
constexpr int kMostRowsOfHistory = 24;

using terminal::Row;
using terminal::Screen;

}  // namespace

ORVTopPage::ORVTopPage(ORVAppDelegate& delegate) : delegate_(delegate), menu_(delegate) {
    menu_.setLeave([this] { menuIsOpen_ = false; });
}

const std::vector<ORVTaskView>& ORVTopPage::tasks() const {
    static const std::vector<ORVTaskView> kNone;
    return delegate_.lastList() ? delegate_.lastList()->tasks : kNone;
}

std::vector<Row> ORVTopPage::rows(const Screen& screen) {
    if (menuIsOpen_) {
        return menu_.rows(screen);
    }
    keepSelection();
    std::vector<Row> rows;
    const int room = screen.rows - 1;  // The last row is the hint.
    if (showsKeys_) {
        rows = listOfKeys(screen);
    } else if (tasks().empty()) {
        rows = emptyRows(screen);
    } else {
        const bool hasHistory = screen.rows >= kRowsOfScreenWithHistory;
        const int forTable = hasHistory ? std::max(room / 2, room - kMostRowsOfHistory) : room;
        terminal::append(rows,
                         tableRows(static_cast<std::size_t>(std::max(0, forTable - 1)), screen));
        if (hasHistory) {
            terminal::append(rows, historyRows(room - static_cast<int>(rows.size()), screen));
        }
    }
    rows.resize(static_cast<std::size_t>(std::max(0, room)));
    const ORVWords& words = delegate_.words();
    rows.push_back(terminal::keyHint({{words.move, "↑↓"},
                                      {words.open, "Enter"},
                                      {words.helpers, "h"},
                                      {words.keys, "?"},
                                      {words.quit, "q"}},
                                     screen));
    fitScreen(rows, screen);
    return rows;
}

std::vector<Row> ORVTopPage::listOfKeys(const Screen& screen) const {
    const ORVWords& words = delegate_.words();
    const std::vector<terminal::Line> lines = terminal::keyLines({{words.move, "↑ ↓  k j"},
                                                                  {words.page, "PgUp PgDn"},
                                                                  {words.ends, "Home End"},
                                                                  {words.open, "Enter"},
                                                                  {words.back, "Esc b"},
                                                                  {words.helpers, "h"},
                                                                  {words.keys, "?"},
                                                                  {words.quit, "q"}},
                                                                 screen);
    return terminal::framed(lines, terminal::widestOf(lines), screen.rows > 10, screen);
}

std::vector<Row> ORVTopPage::emptyRows(const Screen& screen) const {
    if (!delegate_.lastList()) {
        return {};
    }
    const ORVWords& words = delegate_.words();
    const auto why = delegate_.lastList()->mayHaveFiles ? words.noTasks : words.noSessionFiles;
    return {{},
            {{" " + terminal::shown(why, screen), {.isBold = true}}},
            {{" " + terminal::shown(delegate_.advice(), screen)}}};
}

std::vector<Row> ORVTopPage::tableRows(std::size_t most, const Screen& screen) {
    tableSize_ = std::max<std::size_t>(1, most);
    const std::size_t lastFirst = tasks().size() - std::min(tasks().size(), tableSize_);
    first_ = std::min({first_, selected_, lastFirst});
    first_ = std::max(first_, selected_ + 1 - std::min(selected_ + 1, tableSize_));
    return terminal::table(
        tasks(), first_, tableSize_,
        {delegate_.words(), ORVSystemClock().now(), /*hasMarks=*/true, selected_}, screen);
}

std::vector<Row> ORVTopPage::historyRows(int room, const Screen& screen) const {
    constexpr int kRowsForLedger = 5;
    const auto history = delegate_.lastHistory();
    if (!history) {
        return {};
    }
    const ORVWords& words = delegate_.words();
    std::vector<Row> rows = {{}};
    terminal::append(rows, terminal::plotRows(*history, room - 1 - kRowsForLedger, words, screen));
    const int rest = room - static_cast<int>(rows.size());
    terminal::append(rows, terminal::ledgerRows(app::compactionsOf(*history), rest, words, screen));
    return rows;
}

/// Finds the selected task in a list that may have another order. Where it is gone, the task in its
/// place is selected.
void ORVTopPage::keepSelection() {
    const auto& all = tasks();
    const auto found = std::find_if(all.begin(), all.end(), [&](const ORVTaskView& task) {
        return task.threadID == selectedID_;
    });
    if (found != all.end()) {
        selected_ = static_cast<std::size_t>(found - all.begin());
    } else if (!all.empty()) {
        select(std::min(selected_, all.size() - 1));
    }
}

void ORVTopPage::select(std::size_t place) {
    selected_ = place;
    selectedID_ = tasks()[place].threadID;
    delegate_.showTask({ORVShownTask::Choice::identified, selectedID_});
}

void ORVTopPage::moveSelection(std::ptrdiff_t step) {
    if (tasks().empty()) {
        return;
    }
    const auto last = static_cast<std::ptrdiff_t>(tasks().size()) - 1;
    const auto from = static_cast<std::ptrdiff_t>(selected_);
    const auto place = step < 0 ? std::max<std::ptrdiff_t>(0, from + std::max(step, -from))
                                : from + std::min(step, last - from);
    select(static_cast<std::size_t>(place));
}

void ORVTopPage::toggleHelpers() {
    ORVListRequest list = delegate_.listRequest();
    list.showsHelpers = !list.showsHelpers;
    delegate_.showList(std::move(list));
}

void ORVTopPage::pressed(int key) {
    constexpr std::ptrdiff_t kAll = std::numeric_limits<std::int32_t>::max();
    if (menuIsOpen_) {
        return menu_.pressed(key);
    }
    if (std::exchange(showsKeys_, false) && key != 'q') {
        return;
    }
    const auto page = static_cast<std::ptrdiff_t>(tableSize_);
    switch (key) {
        case KEY_UP:
        case 'k':
            return moveSelection(-1);
        case KEY_DOWN:
        case 'j':
            return moveSelection(1);
        case KEY_PPAGE:
            return moveSelection(-page);
        case KEY_NPAGE:
            return moveSelection(page);
        case KEY_HOME:
            return moveSelection(-kAll);
        case KEY_END:
            return moveSelection(kAll);
        case KEY_ENTER:
        case '\r':
        case '\n':
            menuIsOpen_ = !tasks().empty();
            return;
        case 'h':
            return toggleHelpers();
        case '?':
            showsKeys_ = true;
            return;
        case 'q':
            delegate_.performKeyEquivalent("q");
            return;
        default:
            return;
    }
}
