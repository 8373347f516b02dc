// brimletctl: the figures of Brimlet for terminals, scripts and status bars.

#include <signal.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "app/version.h"
#include "ctl/arguments.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/watch.h"
#include "platform/confinement.h"
#include "platform/home_folder.h"
#include "platform/memory.h"
#include "platform/user_defaults.h"

namespace {

/// Only the menu has something to store.
ORVConfinement confineProcess(ctl::Call call) {
    // Asking for the home folder may take a socket, so it is asked for before, and once.
    const std::string home = platform::homeFolder();
    if (!home.empty()) {
        setenv("HOME", home.c_str(), 1);
    }
    const bool stores = call == ctl::Call::watch;
    return platform::confineProcess(stores ? platform::foldersOfUserDefaults()
                                           : std::vector<std::string>());
}

}  // namespace

int main(int count, char** values) {
    ctl::holdStandardDescriptors();
    signal(SIGPIPE, SIG_IGN);  // A reader that leaves shows in the result of a write.
    platform::returnFreedMemory();
    const ctl::Arguments arguments = ctl::parseArguments(count, values);
    confineProcess(arguments.call);
    switch (arguments.call) {
        case ctl::Call::notUnderstood:
            ctl::explain(arguments.complaint, ctl::kUsage);
            return ctl::kUsageError;
        case ctl::Call::help:
            return ctl::showText(ctl::kUsage);
        case ctl::Call::version:
            return ctl::showText("brimletctl " BRIMLET_VERSION "\n");
        case ctl::Call::watch:
            return arguments.format == ctl::Format::json ? ctl::watchAsJSON() : ctl::watch();
        default:
            break;
    }
    ctl::Sources sources;
    switch (arguments.call) {
        case ctl::Call::latest:
            return ctl::showLatest(sources, arguments.format);
        case ctl::Call::task:
            return ctl::showTask(sources, arguments.threadID, arguments.format);
        case ctl::Call::focus:
            return ctl::showFocus(sources, arguments.format);
        case ctl::Call::titles:
            return ctl::showTitles(sources, arguments.format);
        default:
            return ctl::answerQueries(sources, stdin);
    }
}
