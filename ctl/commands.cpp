// Holds the short commands, and the functions by which all commands write an answer or explain why
// there is none. Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/commands.h"

#include <unistd.h>

#include <cerrno>

#include "ctl/answers.h"
#include "ctl/coloring.h"
#include "ctl/output.h"
#include "sessions/errors.h"

namespace ctl {
namespace {

int showSnapshot(Sources& sources, const std::optional<ORVSessionSnapshot>& snapshot,
                 const ORVErrorSlot& error, const std::string& whatIsMissing,
                 const Arguments& arguments) {
    if (!snapshot) {
        complain(reason(sources, error, whatIsMissing));
    }
    const int status = snapshot ? kAnswered : kNothingToShow;
    if (arguments.format == Format::json) {
        return finish(snapshotAnswer(snapshot, error) + '\n', status);
    }
    if (!snapshot) {
        return status;
    }
    if (arguments.format == Format::ownTemplate) {
        return finish(filledTemplate(*arguments.ownTemplate, *snapshot, sources) + '\n', status);
    }
    const bool isColored = ctl::isColored(arguments.coloring, STDOUT_FILENO);
    return finish(snapshotText(*snapshot, isColored) + '\n', status);
}

}  // namespace

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

std::string reason(Sources& sources, const ORVErrorSlot& error, const std::string& whatIsMissing) {
    if (!error) {
        return whatIsMissing;
    }
    if (error->domain != sessions::kErrorDomain) {
        return "cannot read the session file: " + error->description;
    }
    return error->code == sessions::ORVErrorSessionsDirectoryMissing ? reasonForNoSessions(sources)
                                                                     : whatIsMissing;
}

std::string reasonForNoSessions(Sources& sources) {
    const std::string folder = sources.session.sessionsFolder();
    ORVErrorSlot error;
    sources.files->walk(
        folder, [](std::string_view) { return false; }, [](ORVWalkedFile&&) {},
        [&](ORVError&& failure) { storeErrorIfEmpty(&error, std::move(failure)); });
    return error && error->code != ENOENT
               ? "cannot read the sessions folder " + folder + ": " + error->description
               : "there is no sessions folder " + folder;
}

std::optional<std::string> realFolder(ORVFiles& files, const std::string& folder) {
    auto path = files.realPath(folder);
    if (path && access((*path + "/.").c_str(), X_OK) == 0) {
        return path;
    }
    complain("cannot enter the folder " + folder + ": " + platform::posixError(errno).description);
    return std::nullopt;
}

int showText(std::string_view text) {
    return finish(text, kAnswered);
}

int showLatest(Sources& sources, const Arguments& arguments) {
    ORVErrorSlot error;
    const auto snapshot = sources.session.latestSnapshotWithError(&error);
    return showSnapshot(sources, snapshot, error,
                        "there is no session file in " + sources.session.sessionsFolder(),
                        arguments);
}

int showTask(Sources& sources, const Arguments& arguments) {
    ORVErrorSlot error;
    const auto snapshot = sources.session.snapshotForThreadID(arguments.threadID, &error);
    return showSnapshot(sources, snapshot, error,
                        "there is no session file of the task " + arguments.threadID, arguments);
}

int showHere(Sources& sources, const Arguments& arguments) {
    const auto folder = realFolder(*sources.files, arguments.folder);
    if (!folder) {
        return arguments.format == Format::json
                   ? finish(snapshotAnswer(std::nullopt, {}) + '\n', kNothingToShow)
                   : kNothingToShow;
    }
    ORVErrorSlot error;
    const auto snapshot = sources.session.snapshotForFolder(*folder, &error);
    return showSnapshot(sources, snapshot, error, "no task works in " + *folder, arguments);
}

int showFocus(Sources& sources, const Arguments& arguments) {
    ORVErrorSlot error;
    const ORVCodexFocusState focusState = sources.focus.currentFocusStateWithError(&error);
    const std::string answer =
        arguments.format == Format::json ? focusAnswer(focusState, error) : focusText(focusState);
    return finish(answer + '\n', kAnswered);
}

int showTitles(Sources& sources, const Arguments& arguments) {
    const Titles titles = sources.session.threadTitles();
    return finish(
        arguments.format == Format::json ? titlesAnswer(titles) + '\n' : titlesText(titles),
        kAnswered);
}

}  // namespace ctl
