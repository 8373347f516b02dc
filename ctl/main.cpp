// brimletctl: the figures of Brimlet for terminals, scripts and status bars.
// Tests: tests/ctl/brimletctl_test.cpp.

#include <signal.h>
#include <stdlib.h>

#include <limits>
#include <new>
#include <string>
#include <vector>

#include "app/version.h"
#include "ctl/arguments.h"
#include "ctl/codex_home.h"
#include "ctl/command_table.h"
#include "ctl/commands.h"
#include "ctl/doctor.h"
#include "ctl/output.h"
#include "ctl/revision.h"
#include "ctl/watch.h"
#include "platform/confinement.h"
#include "platform/home_folder.h"
#include "platform/memory.h"
#include "platform/user_defaults.h"

namespace {

using ctl::Call;

/// Gives up every right that the call does not need. Only `watch` stores a setting.
ORVConfinement confineProcess(Call call) {
    // Looking up the home folder may need a socket, so it is done once, before sockets are given
    // up.
    const std::string home = platform::homeFolder();
    if (!home.empty()) {
        setenv("HOME", home.c_str(), 1);
    }
    const bool stores = call == Call::watch;
    return platform::confineProcess(stores ? platform::foldersOfUserDefaults()
                                           : std::vector<std::string>());
}

int answer(const ctl::Arguments& arguments, const ORVConfinement& confinement) {
    switch (arguments.call) {
        case Call::help:
            return ctl::showText(ctl::helpText(arguments.helpTopic));
        case Call::version:
            return ctl::showText("brimletctl " BRIMLET_VERSION BRIMLET_REVISION "\n");
        default:
            break;
    }
    const ctl::CodexHome home = ctl::codexHome(arguments.codexHome);
    if (arguments.call == Call::watch) {
        return ctl::watch(arguments, home.path);
    }
    constexpr std::size_t kWholeHistory = std::numeric_limits<std::size_t>::max();
    ctl::Sources sources(home.path, {arguments.call == Call::history ? kWholeHistory : 0});
    switch (arguments.call) {
        case Call::latest:
            return ctl::showLatest(sources, arguments);
        case Call::task:
            return ctl::showTask(sources, arguments);
        case Call::here:
            return ctl::showHere(sources, arguments);
        case Call::tasks:
            return ctl::showTasks(sources, arguments);
        case Call::history:
            return ctl::showHistory(sources, arguments);
        case Call::focus:
            return ctl::showFocus(sources, arguments);
        case Call::titles:
            return ctl::showTitles(sources, arguments);
        case Call::doctor:
            return ctl::examine(sources, home, confinement);
        default:
            return ctl::answerQueries(sources, stdin);
    }
}

}  // namespace

int main(int count, char** values) {
    ctl::holdStandardDescriptors();
    // Without these signals, the result of a write tells that the reader has closed its end, or
    // that the file has reached its largest size.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    platform::returnFreedMemory();
    try {
        const auto parsed = ctl::parseArguments(count, values);
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
