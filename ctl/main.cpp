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
#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/revision.h"
#include "l10n/ORVLocalizer.h"
#include "platform/confinement.h"
#include "platform/program.h"
#include "platform/user_defaults.h"

namespace {

using ctl::Call;

/// Looking up the home folder may need a socket, so it is done once, before sockets are given up.
void keepHomeFolder() {
    const std::string home = platform::homeFolder();
    if (!home.empty()) {
        setenv("HOME", home.c_str(), 1);
    }
}

/// Gives up every right that a call does not need whose answer is given at once, or, for `query`,
/// as long as there are questions: what it is to read may be made meanwhile.
ORVConfinement confineProcess(const ctl::Invocation& invocation) {
    ORVFileRights rights;
    if (invocation.arguments.call != Call::query) {
        rights.placesToRead = invocation.viewer.placesToRead();
    }
    if (invocation.arguments.call == Call::doctor) {
        rights.placesToRead->push_back(invocation.home.path + "/archived_sessions");
        rights.placesToRead->push_back(platform::placeOfUserDefaults());
    }
    return platform::confineProcess(rights);
}

int answerOnce(const ctl::Arguments& arguments) {
    // Never destroyed: the system frees what the tasks of years take faster than they do.
    static auto& invocation = *new ctl::Invocation(arguments, ctl::codexHome(arguments.codexHome));
    const ORVConfinement confinement = confineProcess(invocation);
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

int answer(const ctl::Arguments& arguments) {
    keepHomeFolder();
    switch (arguments.call) {
        case Call::help:
            return ctl::finish(ctl::helpText(arguments.helpTopic), ctl::kAnswered);
        case Call::version:
            return ctl::finish("brimletctl " BRIMLET_VERSION BRIMLET_REVISION "\n", ctl::kAnswered);
        case Call::watch:
        case Call::top:
            break;
        default:
            return answerOnce(arguments);
    }
    // The menu stores a setting, and only its reading thread is confined to what it reads.
    platform::confineProcess({platform::makeFoldersOfUserDefaults(ORVLocalizer::kModeKey), {}});
    const std::string codexHome = ctl::codexHome(arguments.codexHome).path;
    return arguments.call == Call::watch ? ctl::watch(arguments, codexHome)
                                         : ctl::top(arguments, codexHome);
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
        if (arguments) {
            return answer(*arguments);
        }
        ctl::explainMistake(std::get<ctl::Mistake>(parsed));
        return ctl::kUsageError;
    } catch (const std::bad_alloc&) {
        ctl::complain("there is not enough memory");
        return ctl::kNothingToShow;
    }
}
