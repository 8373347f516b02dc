// The calls that answer once and end.

#include "ctl/commands.h"

#include "ctl/answers.h"
#include "ctl/output.h"
#include "sessions/errors.h"

namespace ctl {
namespace {

/// Writes the answer; `status` is the exit status once that succeeded.
int finish(std::string_view answer, int status) {
    switch (writeOutput(answer)) {
        case WriteResult::written:
            return status;
        case WriteResult::readerLeft:
            return kAnswered;
        case WriteResult::failed:
            break;
    }
    return kNothingToShow;
}

/// Why there is no snapshot, in words for a person.
std::string reason(const ORVErrorSlot& error, const std::string& whatIsMissing) {
    if (!error) {
        return whatIsMissing;
    }
    if (error->domain != sessions::kErrorDomain) {
        return "cannot read the session file: " + error->description;
    }
    return error->code == sessions::ORVErrorSessionsDirectoryMissing
               ? "there is no Codex sessions folder that can be read"
               : whatIsMissing;
}

int showSnapshot(const std::optional<ORVSessionSnapshot>& snapshot, const ORVErrorSlot& error,
                 const std::string& whatIsMissing, Format format) {
    if (!snapshot) {
        complain(reason(error, whatIsMissing));
    }
    const int status = snapshot ? kAnswered : kNothingToShow;
    if (format == Format::json) {
        return finish(snapshotAnswer(snapshot, error) + '\n', status);
    }
    return snapshot ? finish(snapshotText(*snapshot) + '\n', status) : status;
}

}  // namespace

int showText(std::string_view text) {
    return finish(text, kAnswered);
}

int showLatest(Sources& sources, Format format) {
    ORVErrorSlot error;
    const auto snapshot = sources.session.latestSnapshotWithError(&error);
    return showSnapshot(snapshot, error, "there is no session file", format);
}

int showTask(Sources& sources, const std::string& threadID, Format format) {
    ORVErrorSlot error;
    const auto snapshot = sources.session.snapshotForThreadID(threadID, &error);
    return showSnapshot(snapshot, error, "there is no session file of the task " + threadID,
                        format);
}

int showFocus(Sources& sources, Format format) {
    ORVErrorSlot error;
    const ORVCodexFocusState focusState = sources.focus.currentFocusStateWithError(&error);
    const std::string answer =
        format == Format::json ? focusAnswer(focusState, error) : focusText(focusState);
    return finish(answer + '\n', kAnswered);
}

int showTitles(Sources& sources, Format format) {
    const Titles titles = sources.session.threadTitles();
    return finish(format == Format::json ? titlesAnswer(titles) + '\n' : titlesText(titles),
                  kAnswered);
}

}  // namespace ctl
