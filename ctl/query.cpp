// Answers queries from standard input, each with a line of JSON before the next is read. The
// sources live as long as the program, so that a later query reads only what was appended since.
// Tests: tests/ctl/brimletctl_test.cpp.

#include <cerrno>
#include <new>
#include <optional>

#include "ctl/commands.h"
#include "ctl/output.h"
#include "shells/lines/answers.h"
#include "text/json.h"

namespace ctl {
namespace {

/// No query is nearly as long.
constexpr std::size_t kLongestQuery = 1024 * 1024;

std::string unknownQuery() {
    return json::errorAnswer({"brimletctl", 2, "unknown query"});
}

std::string answer(ORVTaskViewer& viewer, const std::string& query) {
    constexpr std::string_view kTask = "task ";
    if (query.size() > kLongestQuery) {
        return unknownQuery();
    }
    ORVCodexSessionSource& sessions = viewer.sessions();
    ORVErrorSlot error;
    if (query == "focus") {
        const ORVCodexFocusState focusState = viewer.focus().currentFocusStateWithError(&error);
        return json::focusAnswer(focusState, error);
    }
    if (query == "latest") {
        const auto snapshot = sessions.latestSnapshotWithError(&error);
        return json::snapshotAnswer(snapshot, error);
    }
    if (query.starts_with(kTask)) {
        const auto snapshot = sessions.snapshotForThreadID(query.substr(kTask.size()), &error);
        return json::snapshotAnswer(snapshot, error);
    }
    if (query == "titles") {
        return json::titlesAnswer(sessions.threadTitles());
    }
    if (query == "refresh") {
        const ORVTaskView view = viewer.view({});
        return view.focusState ? text::objectJSON({{"focus", json::focus(*view.focusState)},
                                                   {"snapshot", json::snapshot(view.snapshot)},
                                                   {"error", json::error(view.error)}})
                               : json::errorAnswer(*view.error);
    }
    return unknownQuery();
}

/// The sources handle a file that is too large for the memory. This is for everything else, such as
/// an answer of very many titles.
std::string answerWithinMemory(ORVTaskViewer& viewer, const std::string& query) {
    try {
        return answer(viewer, query);
    } catch (const std::bad_alloc&) {
        return json::errorAnswer(platform::posixError(ENOMEM));
    }
}

/// Returns the next line without its line feed, and none at the end of the input. A line that is
/// too long is cut to one byte more than the longest query, so that it becomes an unknown query.
std::optional<std::string> nextLine(std::FILE* input) {
    std::string line;
    int c = getc_unlocked(input);
    if (c == EOF) {
        return std::nullopt;
    }
    for (; c != EOF && c != '\n'; c = getc_unlocked(input)) {
        if (line.size() <= kLongestQuery) {
            line += static_cast<char>(c);
        }
    }
    return line;
}

}  // namespace

int answerQueries(ORVTaskViewer& viewer, std::FILE* input) {
    while (const auto query = nextLine(input)) {
        const WriteResult result = writeOutput(answerWithinMemory(viewer, *query) + '\n');
        if (result != WriteResult::written) {
            return result == WriteResult::readerLeft ? kAnswered : kNothingToShow;
        }
    }
    if (std::ferror(input) != 0) {
        complain("cannot read the queries: " + platform::posixError(errno).description);
        return kNothingToShow;
    }
    return kAnswered;
}

}  // namespace ctl
