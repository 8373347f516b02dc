// The short commands: each asks for a view and passes it to the writer of the wanted form.
// Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/commands.h"

#include <unistd.h>

#include <cerrno>
#include <limits>
#include <new>

#include "ctl/output.h"
#include "shells/lines/answers.h"
#include "shells/terminal/table.h"

namespace ctl {
namespace {

std::string textFor(const Invocation& invocation, const ORVTaskView& view) {
    const Arguments& arguments = invocation.arguments;
    return arguments.ownTemplate
               ? filledTemplate(invocation, view)
               : terminal::lines({terminal::taskRow(view)}, isColoured(arguments.colours));
}

}  // namespace

ORVTaskWants Invocation::wantsOf(const Arguments& arguments) {
    ORVTaskWants wants;
    if (arguments.ownTemplate) {
        wants = arguments.ownTemplate->wants();
    }
    const bool isTable =
        arguments.call == Call::tasks && arguments.format == Format::text && isatty(STDOUT_FILENO);
    wants.agent = wants.agent || arguments.format == Format::json || isTable;
    wants.shortID = wants.shortID || isTable;
    wants.eventsPerFile =
        arguments.call == Call::history ? std::numeric_limits<std::size_t>::max() : 0;
    return wants;
}

int showTask(Invocation& invocation) {
    const Arguments& arguments = invocation.arguments;
    const bool isJSON = arguments.format == Format::json;
    const auto task = realTask(*invocation.files, arguments);
    if (!task) {
        return isJSON ? finish(json::taskAnswer({}) + '\n', kNothingToShow) : kNothingToShow;
    }
    const ORVTaskView view = invocation.viewer.view(*task);
    if (!view.snapshot) {
        explainAbsence(invocation, view);
    }
    tellOfUnreadable(invocation, view.absence == ORVAbsence::unreadable);
    const int status = view.snapshot ? kAnswered : kNothingToShow;
    if (isJSON) {
        return finish(json::taskAnswer(view) + '\n', status);
    }
    return view.snapshot ? finish(textFor(invocation, view), status) : status;
}

int showLimits(Invocation& invocation) {
    const auto limits = invocation.viewer.accountLimits();
    const bool isJSON = invocation.arguments.format == Format::json;
    if (!limits) {
        const bool hasFolder = invocation.viewer.tasks().refresh(nullptr);
        complain(
            (hasFolder ? "no session file tells of rate limits" : reasonForNoSessions(invocation)) +
            "; try: brimletctl doctor");
    }
    tellOfUnreadable(invocation, false);
    const int status = limits ? kAnswered : kNothingToShow;
    if (isJSON) {
        return finish(json::limitsAnswer(limits ? limits->rateLimits : std::vector<ORVRateLimit>(),
                                         limits ? limits->at : "") +
                          '\n',
                      status);
    }
    if (!limits) {
        return status;
    }
    const bool isTerminal = isatty(STDOUT_FILENO) != 0;
    const terminal::Screen screen = terminal::screenOfOutput();
    const ORVWords& words = systemLanguage(!isTerminal || screen.showsUnicode).words;
    const std::vector<terminal::Row> rows = terminal::limitRows(
        *limits, {words, invocation.clock.now()}, isTerminal ? &screen : nullptr);
    return finish(terminal::lines(rows, isColoured(invocation.arguments.colours)), status);
}

int showFocus(Invocation& invocation) {
    ORVErrorSlot error;
    const ORVCodexFocusState focusState =
        invocation.viewer.focus().currentFocusStateWithError(&error);
    if (error && error->code == ENOMEM) {
        throw std::bad_alloc();  // What could not be read might have told of another task.
    }
    const bool isJSON = invocation.arguments.format == Format::json;
    return finish(
        (isJSON ? json::focusAnswer(focusState, error) : lines::focusText(focusState)) + '\n',
        kAnswered);
}

int showTitles(Invocation& invocation) {
    const auto titles = invocation.viewer.sessions().threadTitles();
    const std::string trouble = troubleWithTitles(invocation);
    if (!trouble.empty()) {
        complain(trouble + "; try: brimletctl doctor");
    }
    const bool isJSON = invocation.arguments.format == Format::json;
    return finish(isJSON ? json::titlesAnswer(titles) + '\n' : lines::titlesText(titles),
                  trouble.empty() ? kAnswered : kNothingToShow);
}

}  // namespace ctl
