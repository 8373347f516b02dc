// brimletctl: the figures of Brimlet for terminals, scripts and status bars.
// Tests: tests/ctl/brimletctl_test.cpp.

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <new>
#include <string>
#include <vector>

#include "app/version.h"
#include "ctl/arguments.h"
#include "ctl/command_table.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/revision.h"
#include "l10n/ORVLocalizer.h"
#include "platform/confinement.h"
#include "platform/home_folder.h"
#include "platform/process.h"
#include "platform/user_defaults.h"

namespace {

using ctl::Call;

/// Gives up every right that the call does not need. Only the menu stores a setting.
ORVConfinement confineProcess(Call call) {
    // Looking up the home folder may need a socket, so it is done once, before sockets are given
    // up.
    const std::string home = platform::homeFolder();
    if (!home.empty()) {
        setenv("HOME", home.c_str(), 1);
    }
    const bool stores = call == Call::watch || call == Call::top;
    return platform::confineProcess(
        stores ? platform::makeFoldersOfUserDefaults(ORVLocalizer::kModeKey)
               : std::vector<std::string>());
}

int answer(const ctl::Arguments& arguments, const ORVConfinement& confinement) {
    switch (arguments.call) {
        case Call::help:
            return ctl::finish(ctl::helpText(arguments.helpTopic), ctl::kAnswered);
        case Call::version:
            return ctl::finish("brimletctl " BRIMLET_VERSION BRIMLET_REVISION "\n", ctl::kAnswered);
        case Call::watch:
            return ctl::watch(arguments, ctl::codexHome(arguments.codexHome).path);
        case Call::top:
            return ctl::top(arguments, ctl::codexHome(arguments.codexHome).path);
        default:
            break;
    }
    ctl::Invocation invocation(arguments, ctl::codexHome(arguments.codexHome));
    switch (arguments.call) {
        case Call::tasks:
            return ctl::showTasks(invocation);
        case Call::history:
            return ctl::showHistory(invocation);
        case Call::limits:
            return ctl::showLimits(invocation);
        case Call::focus:
            return ctl::showFocus(invocation);
        case Call::titles:
            return ctl::showTitles(invocation);
        case Call::doctor:
            return ctl::doctor(invocation, confinement);
        case Call::query:
            return ctl::answerQueries(invocation.viewer, stdin);
        default:
            return ctl::showTask(invocation);
    }
}

}  // namespace

int main(int count, char** values) {
    platform::closeInheritedDescriptors();
    ctl::holdStandardDescriptors();
    // Without these signals, the result of a write tells that the reader has closed its end, or
    // that the file has reached its largest size.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    platform::returnFreedMemory();
    try {
        const auto parsed = ctl::parseArguments(
            count, values, isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0);
        const auto* arguments = std::get_if<ctl::Arguments>(&parsed);
        const ORVConfinement confinement = confineProcess(arguments ? arguments->call : Call::help);
        if (arguments) {
            return answer(*arguments, confinement);
        }
        ctl::explainMistake(std::get<ctl::Mistake>(parsed));
        return ctl::kUsageError;
    } catch (const std::bad_alloc&) {
        ctl::complain("there is not enough memory");
        return ctl::kNothingToShow;
    }
}
