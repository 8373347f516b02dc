// Runs the application with the menu on a terminal, else with lines of text, JSON, Waybar's JSON or
// the user's template. Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/watch.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "ctl/coloring.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "shells/ORVCommandInput.h"
#include "shells/ORVLineSurface.h"
#include "shells/ORVPosixApplication.h"
#include "shells/json/status_item_json.h"
#include "shells/json/waybar_json.h"
#include "shells/terminal/ORVTerminalMenu.h"
#include "text/unicode.h"

namespace ctl {
namespace {

/// More events than any terminal has columns.
constexpr std::size_t kEventsOfAPlot = 4096;

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
    const auto& snapshot = delegate.lastSnapshot();
    ORVTemplateValues values;
    values.status = delegate.statusItem().title;
    values.snapshot = snapshot ? &*snapshot : nullptr;
    values.titleWithoutTask = delegate.focusLine().empty() ? "--" : delegate.focusLine();
    values.folder = delegate.lastFolder();
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

void complainOfOutput(int failure) {
    complain("cannot write the output: " + platform::posixError(failure).description);
}

/// Whether a person sees the lines and can type here.
bool hasPersonAtLines() {
    return isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) && tcgetpgrp(STDIN_FILENO) == getpgrp();
}

int watchAsLines(const Arguments& arguments, ORVPosixHost::Settings settings) {
    ORVPosixApplication application(std::move(settings), complain);
    ORVLineSurface surface(
        application, STDOUT_FILENO, [&] { return lineFor(arguments, application.delegate()); },
        complainOfOutput);
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
    return application.run(surface);
}

int watchAsMenu(const Arguments& arguments, ORVPosixHost::Settings settings) {
    settings.request.eventsPerFile = kEventsOfAPlot;
    // Complaints wait until the menu has left the screen.
    std::vector<std::string> complaints;
    ORVPosixApplication application(std::move(settings), [&](const std::string& complaint) {
        complaints.push_back(complaint);
    });
    // Before curses begins, which would otherwise install its own handler of SIGWINCH.
    for (const int signalNumber : {SIGWINCH, SIGCONT}) {
        ORVPosixApplication::redrawOn(signalNumber);
    }
    ORVTerminalMenu menu(application.delegate(), isColored(arguments.coloring, STDOUT_FILENO));
    application.runLoop().watch(STDIN_FILENO, ORVPosixRunLoop::Interest::readable, [&] {
        if (!menu.readKeys()) {
            application.runLoop().stop(kAnswered);
        }
    });
    const int status = application.run(menu);
    std::for_each(complaints.begin(), complaints.end(), complain);
    return status;
}

}  // namespace

int watch(const Arguments& arguments, const std::string& codexHome) {
    ORVPosixHost::Settings settings{codexHome, {}};
    settings.request.task = arguments.shownTask;
    settings.request.wantsFolder = arguments.ownTemplate && arguments.ownTemplate->wants("folder");
    if (arguments.shownTask.choice == ORVShownTask::Choice::inFolder) {
        const auto folder = realFolder(*platform::makeFiles(), arguments.folder);
        if (!folder) {
            return kNothingToShow;
        }
        settings.request.task.value = *folder;
    }
    const bool isMenu = arguments.format == Format::text && isatty(STDOUT_FILENO) &&
                        isatty(STDIN_FILENO) && ORVTerminalMenu::isPossible();
    return isMenu ? watchAsMenu(arguments, std::move(settings))
                  : watchAsLines(arguments, std::move(settings));
}

}  // namespace ctl
