// Shows a task's history, drawn, as SVG or as JSON. Tests: tests/ctl/brimletctl_test.cpp; those of
// the drawings are in tests/shells/history_test.cpp.

#include <unistd.h>

#include <algorithm>

#include "ctl/answers.h"
#include "ctl/coloring.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "shells/history/history_plot.h"
#include "shells/history/history_svg.h"
#include "shells/terminal/screen_size.h"
#include "text/json_writing.h"

namespace ctl {
namespace {

std::string eventJSON(const ORVHistoryEvent& event) {
    const std::string at = event.at.empty() ? "null" : text::quotedJSON(event.at);
    if (event.isCompaction()) {
        return text::objectJSON({{"at", at}, {"compaction", "true"}});
    }
    return text::objectJSON({{"at", at},
                             {"inputTokens", std::to_string(event.usage->inputTokens())},
                             {"contextWindow", std::to_string(event.usage->contextWindow())},
                             {"percentage", text::numberJSON(event.usage->percentage())}});
}

std::string historyJSON(const std::optional<ORVSessionSnapshot>& snapshot,
                        const ORVHistory& history) {
    std::string points;
    for (const ORVHistoryEvent& event : history) {
        points += (points.empty() ? "" : ",") + eventJSON(event);
    }
    const auto orNull = [&](const std::string& text) {
        return snapshot ? text::quotedJSON(text) : "null";
    };
    return text::objectJSON({{"threadID", orNull(snapshot ? snapshot->threadID() : "")},
                             {"title", orNull(snapshot ? snapshot->title() : "")},
                             {"points", "[" + points + "]"}}) +
           '\n';
}

std::string drawnHistory(const ORVSessionSnapshot& snapshot, const ORVHistory& history,
                         bool isColored) {
    constexpr int kMostRows = 16;
    const terminal::Screen screen = terminal::screenOfOutput();
    std::string text = snapshotText(snapshot, isColored) + '\n';
    const history::PlotSize size{screen.columns, std::clamp(screen.rows - 4, 4, kMostRows),
                                 screen.showsUnicode};
    for (const history::PlotRow& row : history::plot(history, size)) {
        const bool hasColor = isColored && row.level;
        text +=
            row.label + (hasColor ? coloredByPercentage(row.text, *row.level) : row.text) + '\n';
    }
    return text;
}

}  // namespace

int showHistory(Sources& sources, const Arguments& arguments) {
    ORVErrorSlot error;
    const auto snapshot = arguments.hasThreadID
                              ? sources.session.snapshotForThreadID(arguments.threadID, &error)
                              : sources.session.latestSnapshotWithError(&error);
    if (!snapshot) {
        complain(reason(sources, error,
                        arguments.hasThreadID
                            ? "there is no session file of the task " + arguments.threadID
                            : "there is no session file in " + sources.session.sessionsFolder()));
        return arguments.format == Format::json ? finish(historyJSON(snapshot, {}), kNothingToShow)
                                                : kNothingToShow;
    }
    const auto history = sources.session.historyForThreadID(snapshot->threadID());
    switch (arguments.format) {
        case Format::json:
            return finish(historyJSON(snapshot, *history), kAnswered);
        case Format::svg:
            return finish(history::svg(*history, snapshot->title()), kAnswered);
        default:
            break;
    }
    return finish(drawnHistory(*snapshot, *history, isColored(arguments.coloring, STDOUT_FILENO)),
                  kAnswered);
}

}  // namespace ctl
