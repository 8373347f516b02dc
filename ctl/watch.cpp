// Runs the application: `watch` with the menu on a terminal, else with lines of text, JSON,
// Waybar's JSON or the user's template; `top` with a table on the whole terminal, else with JSON.
// Tests: tests/ctl/brimletctl_test.cpp, tests/shells/terminal_test.cpp.

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "ctl/commands.h"
#include "ctl/output.h"
#include "shells/ORVPosixApplication.h"
#include "shells/lines/ORVLineSurface.h"
#include "shells/lines/answers.h"
#include "shells/terminal/ORVMenuPage.h"
#include "shells/terminal/ORVTopPage.h"
#include "text/unicode.h"

namespace ctl {
namespace {

/// Many times as many events as a screen has columns; of more the plot shows the highest. A history
/// is copied at every refresh in which it grows.
constexpr std::size_t kEventsOfAPlot = 4'000;

/// So many tasks are read before a list is shown with what is known.
constexpr std::size_t kReadAtOnce = 64;

using Settings = ORVPosixHost::Settings;

void performCommand(ORVAppDelegate& delegate, const std::string& line) {
    constexpr std::string_view kChoose = "choose ";
    constexpr std::string_view kKey = "key ";
    const bool isUnderstood =
        (line.starts_with(kChoose) && delegate.chooseItemNamed(line.substr(kChoose.size()))) ||
        (line.starts_with(kKey) && delegate.performKeyEquivalent(line.substr(kKey.size())));
    if (!isUnderstood) {
        complain("unknown command: " + line);
    }
}

std::string filledTemplate(const ORVTemplate& ownTemplate, const ORVAppDelegate& delegate) {
    const auto& view = delegate.lastView();
    ORVTemplateValues values;
    values.status = delegate.statusItem().title;
    values.view = view ? &*view : nullptr;
    values.titleWithoutTask = delegate.focusLine().empty() ? "--" : delegate.focusLine();
    values.now = ORVSystemClock().now();
    values.timeFormat = delegate.timeFormat();
    return ownTemplate.filled(values);
}

/// Returns the line to show at this moment.
std::string lineFor(const Arguments& arguments, const ORVAppDelegate& delegate) {
    switch (arguments.format) {
        case Format::json:
            return json::statusItem(delegate.statusItem());
        case Format::waybar:
            return json::waybar(delegate);
        case Format::ownTemplate:
            return filledTemplate(*arguments.ownTemplate, delegate);
        case Format::text:
        case Format::svg:  // The arguments allow it for `history` only.
            break;
    }
    return text::forTerminal(delegate.statusLine());
}

/// Whether a person sees the lines and can type here.
bool hasPersonAtLines() {
    return isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) && tcgetpgrp(STDIN_FILENO) == getpgrp();
}

bool isOnTerminal(const Arguments& arguments) {
    return arguments.format == Format::text && isatty(STDOUT_FILENO) && isatty(STDIN_FILENO) &&
           terminal::isPossible();
}

int runAsLines(ORVPosixApplication& application, std::function<std::string()> line) {
    ORVLineSurface surface(application.runLoop(), STDOUT_FILENO, std::move(line), [&](int failure) {
        if (failure != 0) {
            complain("cannot write the output: " + platform::posixError(failure).description);
        }
        application.runLoop().stop(failure == 0 ? kAnswered : kNothingToShow);
    });
    return application.run(surface);
}

int watchAsLines(const Arguments& arguments, Settings settings) {
    ORVPosixApplication application(std::move(settings), complain);
    std::optional<ORVCommandInput> input;
    if (arguments.format == Format::json) {
        input.emplace(application.runLoop(), STDIN_FILENO, [&](const std::string& line) {
            performCommand(application.delegate(), line);
        });
    } else if (hasPersonAtLines()) {
        complain("type q and Enter to quit");
        input.emplace(application.runLoop(), STDIN_FILENO, [&](const std::string& line) {
            if (line == "q") {
                application.runLoop().stop(kAnswered);
            }
        });
    }
    return runAsLines(application, [&] { return lineFor(arguments, application.delegate()); });
}

/// Writes the list of tasks whenever it has changed and is whole.
int topAsLines(Settings settings) {
    ORVPosixApplication application(std::move(settings), complain);
    std::string line;
    std::shared_ptr<const ORVTaskListView> written;
    return runAsLines(application, [&] {
        const auto& list = application.delegate().lastList();
        if (list && list->isComplete && list != written) {
            written = list;
            line = json::tasksAnswer(*list);
        }
        return line;
    });
}

/// Runs the application with a page on the whole terminal.
template <typename Page>
int runOnTerminal(const Arguments& arguments, Settings settings) {
    std::vector<std::string> complaints;  // They wait until the terminal is itself again.
    std::optional<ORVTerminal> terminal;
    ORVPosixApplication application(std::move(settings), [&](std::string_view complaint) {
        terminal && !terminal->isClosed() ? void(complaints.emplace_back(complaint))
                                          : complain(complaint);
    });
    // Before curses begins, which would otherwise install its own handler of SIGWINCH.
    for (const int signalNumber : {SIGWINCH, SIGCONT}) {
        ORVPosixApplication::redrawOn(signalNumber);
    }
    terminal.emplace(isColoured(arguments.colours));
    ORVPosixApplication::endAtOnceIf(terminal::endIfStuck);
    if (!terminal->screen().showsUnicode) {
        application.delegate().showOnlyEnglish();
    }
    Page page(application.delegate());
    ORVTerminalSurface surface(*terminal, page);
    application.runLoop().watch(STDIN_FILENO, ORVPosixRunLoop::Interest::readable, [&] {
        if (!terminal->readKeys([&](int key) { page.pressed(key); })) {
            application.runLoop().stop(kAnswered);
        }
    });
    const int status = application.run(surface);
    std::for_each(complaints.begin(), complaints.end(), complain);
    return status;
}

}  // namespace

int watch(const Arguments& arguments, const std::string& codexHome) {
    const auto files = platform::makeFiles();
    const auto task = realTask(*files, arguments);
    if (!task) {
        return kNothingToShow;
    }
    if (task->choice == ORVShownTask::Choice::identified) {
        Invocation invocation(arguments, {codexHome, ""});
        if (const auto several = invocation.viewer.severalMeantBy(task->value)) {
            explainAbsence(invocation, *several);
            return kNothingToShow;
        }
    }
    Settings settings{codexHome, {}};
    settings.request.task = *task;
    if (arguments.ownTemplate) {
        settings.request.wants = arguments.ownTemplate->wants();
    }
    if (!isOnTerminal(arguments)) {
        return watchAsLines(arguments, std::move(settings));
    }
    settings.request.wants.eventsPerFile = kEventsOfAPlot;
    settings.request.wants.advice = true;
    return runOnTerminal<ORVMenuPage>(arguments, std::move(settings));
}

int top(const Arguments& arguments, const std::string& codexHome) {
    Settings settings{codexHome, {}};
    ORVRefreshRequest& request = settings.request;
    request.task.choice = ORVShownTask::Choice::none;
    request.list = arguments.list;
    request.list->countsHelpers = true;
    if (arguments.isHere) {
        request.list->folder = realFolder(*platform::makeFiles(), arguments.folder);
        if (!request.list->folder) {
            return kNothingToShow;
        }
    }
    request.listWants = {.agent = true, .shortID = true};
    if (!isOnTerminal(arguments)) {
        return topAsLines(std::move(settings));
    }
    request.list->readAtOnce = kReadAtOnce;
    request.wants.eventsPerFile = kEventsOfAPlot;
    return runOnTerminal<ORVTopPage>(arguments, std::move(settings));
}

}  // namespace ctl
