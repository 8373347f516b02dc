// Shows a task's history, drawn, as SVG or as JSON. Tests: tests/ctl/brimletctl_test.cpp; those of
// the drawings are in tests/shells/history_test.cpp.

#include <unistd.h>

#include <algorithm>
#include <limits>

#include "app/compaction_ledger.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "shells/history/history.h"
#include "shells/lines/answers.h"
#include "shells/terminal/screen.h"
#include "shells/terminal/table.h"

namespace ctl {
namespace {

/// Draws the plot with the ledger below it: on a terminal as much as has room, elsewhere all of the
/// ledger.
std::string drawn(const Invocation& invocation, const ORVTaskView& view, const ORVHistory& history,
                  const std::vector<app::Compaction>& compactions) {
    constexpr int kMostRows = 16;
    constexpr int kOtherRows = 3;  // The head, the prompt before it, and the prompt after it.
    const bool isTerminal = isatty(STDOUT_FILENO) != 0;
    const terminal::Screen screen = terminal::screenOfOutput();
    const ORVWords& words = l10n::kEnglishWords;
    const int forPlot = std::clamp(screen.rows - kOtherRows - 1, 4, kMostRows);
    std::vector<terminal::Row> rows = {terminal::taskRow(view)};
    terminal::show(rows.front(), screen);
    terminal::append(rows, terminal::plotRows(history, forPlot, words, screen));
    const int most = isTerminal
                         ? std::max(0, screen.rows - kOtherRows - static_cast<int>(rows.size()))
                         : std::numeric_limits<int>::max();
    terminal::append(rows, terminal::ledgerRows(compactions, most, words, screen));
    return terminal::lines(rows, isColoured(invocation.arguments.colours));
}

}  // namespace

int showHistory(Invocation& invocation) {
    const Arguments& arguments = invocation.arguments;
    const bool isJSON = arguments.format == Format::json;
    const auto task = realTask(*invocation.files, arguments);
    const ORVTaskView view = task ? invocation.viewer.view(*task) : ORVTaskView();
    if (task && !view.snapshot) {
        explainAbsence(invocation, view);
    }
    tellOfUnreadable(invocation, view.absence == ORVAbsence::unreadable);
    if (!view.snapshot) {
        return isJSON ? finish(json::historyAnswer(view, {}, {}) + '\n', kNothingToShow)
                      : kNothingToShow;
    }
    ORVHistory history = view.history ? *view.history : ORVHistory();
    std::vector<app::Compaction> compactions = app::compactionsOf(history);
    if (arguments.since) {
        app::leaveOutOlder(
            std::chrono::floor<std::chrono::seconds>(invocation.clock.now()) - *arguments.since,
            history, compactions);
    }
    switch (arguments.format) {
        case Format::json:
            return finish(json::historyAnswer(view, history, compactions) + '\n', kAnswered);
        case Format::svg:
            return finish(history::svg(history, view.snapshot->title()), kAnswered);
        default:
            return finish(drawn(invocation, view, history, compactions), kAnswered);
    }
}

}  // namespace ctl
