// Queries from standard input, each answered with a JSON line before the next is read. The sources
// live as long as the program: reading positions, caches and the current focus event carry over.

#include <cerrno>
#include <cstdlib>

#include "app/refresh_step.h"
#include "ctl/answers.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "text/json_text.h"

namespace ctl {
namespace {

std::string answer(Sources& sources, const std::string& query) {
    constexpr std::string_view kTask = "task ";
    ORVErrorSlot error;
    if (query == "focus") {
        const ORVCodexFocusState focusState = sources.focus.currentFocusStateWithError(&error);
        return focusAnswer(focusState, error);
    }
    if (query == "latest") {
        const auto snapshot = sources.session.latestSnapshotWithError(&error);
        return snapshotAnswer(snapshot, error);
    }
    if (query.starts_with(kTask)) {
        const auto snapshot =
            sources.session.snapshotForThreadID(query.substr(kTask.size()), &error);
        return snapshotAnswer(snapshot, error);
    }
    if (query == "titles") {
        return titlesAnswer(sources.session.threadTitles());
    }
    if (query == "refresh") {
        const ORVRefreshResults results = app::refreshFromFiles(sources.focus, sources.session);
        return text::objectJSON({{"focus", focusJSON(results.focusState)},
                                 {"snapshot", snapshotJSON(results.snapshot)},
                                 {"error", errorJSON(results.error)}});
    }
    return text::objectJSON({{"error", errorJSON(ORVError{"brimletctl", 2, "unknown query"})}});
}

}  // namespace

int answerQueries(Sources& sources, std::FILE* input) {
    int status = kAnswered;
    char* line = nullptr;
    std::size_t capacity = 0;
    while (status == kAnswered) {
        const ssize_t length = getline(&line, &capacity, input);
        if (length <= 0) {
            if (std::ferror(input) != 0) {
                complain("cannot read the queries: " + platform::posixError(errno).description);
                status = kNothingToShow;
            }
            break;
        }
        std::string query(line, static_cast<std::size_t>(length));
        if (query.ends_with('\n')) {
            query.pop_back();
        }
        const WriteResult result = writeOutput(answer(sources, query) + '\n');
        if (result == WriteResult::readerLeft) {
            break;
        }
        status = result == WriteResult::written ? kAnswered : kNothingToShow;
    }
    std::free(line);
    return status;
}

}  // namespace ctl
