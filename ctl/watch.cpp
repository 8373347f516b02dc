// Runs the application with one of its surfaces until the user, a signal or a reader that left ends
// it.

#include "ctl/watch.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "shells/ORVCommandInput.h"
#include "shells/ORVLineOutput.h"
#include "shells/ORVPosixHost.h"
#include "shells/json/status_item_json.h"
#include "shells/terminal/ORVTerminalMenu.h"
#include "text/unicode.h"

namespace ctl {
namespace {

// For the signal handler, which can reach nothing else.
ORVPosixRunLoop* signalledLoop = nullptr;
volatile sig_atomic_t endWasAskedFor = 0;

void askForEnd(int) {
    endWasAskedFor = 1;
    signalledLoop->wakeFromSignal();
}

void wake(int) {
    signalledLoop->wakeFromSignal();
}

/// A signal that the parent has ignored (nohup, a job in the background) stays ignored.
void handle(int signalNumber, void (*handler)(int)) {
    struct sigaction inherited {};
    sigaction(signalNumber, nullptr, &inherited);
    if (inherited.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

/// The application and what every surface needs of it.
class Session {
public:
    explicit Session(const std::function<void(const std::string&)>& hearComplaint)
        : host(platform::makeFiles(),
               platform::standardUserDefaults([hearComplaint](const ORVStoringFailure& failure) {
                   hearComplaint("cannot store the language in " + failure.path + ": " +
                                 failure.reason);
               }),
               hearComplaint),
          delegate(std::make_shared<ORVAppDelegate>(host)) {
        signalledLoop = &host.runLoop();
        for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
            handle(signalNumber, askForEnd);
        }
    }

    /// Runs until the end. `turnEnd` shows what changed; `cleanUp` leaves the surface as it was.
    int run(const std::function<void()>& turnEnd, const std::function<void()>& wakened,
            const std::function<void()>& cleanUp) {
        ORVPosixRunLoop& loop = host.runLoop();
        if (!loop.isUsable()) {
            cleanUp();
            complain("no file descriptors are left");
            return kNothingToShow;
        }
        loop.setTurnEnd(turnEnd);
        loop.setWakened([&loop, wakened] {
            if (endWasAskedFor) {
                loop.stop(kAnswered);
            } else if (wakened) {
                wakened();
            }
        });
        loop.post([this] { delegate->applicationDidFinishLaunching(); });
        const int status = loop.run();
        cleanUp();
        if (!host.readerIsIdle()) {
            _exit(status);  // The thread that hangs still uses the application.
        }
        for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
            handle(signalNumber, SIG_IGN);  // The end is under way.
        }
        for (const int signalNumber : {SIGWINCH, SIGCONT}) {
            handle(signalNumber, SIG_DFL);
        }
        loop.dropClosures();
        return status;
    }

    /// What to do when the output has ended: with an errno, or 0 for a reader that left.
    std::function<void(int)> outputEnded() {
        return [this](int failure) {
            if (failure != 0) {
                complain("cannot write the output: " + platform::posixError(failure).description);
            }
            host.runLoop().stop(failure == 0 ? kAnswered : kNothingToShow);
        };
    }

    ORVPosixHost host;
    std::shared_ptr<ORVAppDelegate> delegate;
};

void perform(ORVAppDelegate& delegate, const std::string& line) {
    constexpr std::string_view kChoose = "choose ";
    constexpr std::string_view kKey = "key ";
    const bool isUnderstood =
        (line.starts_with(kChoose) && delegate.chooseItemNamed(line.substr(kChoose.size()))) ||
        (line.starts_with(kKey) && delegate.performKeyEquivalent(line.substr(kKey.size())));
    if (!isUnderstood) {
        complain("unknown command: " + line);
    }
}

/// The status line alone, for status bars.
int watchAsLines() {
    Session session(complain);
    ORVLineOutput output(session.host.runLoop(), STDOUT_FILENO, session.outputEnded());
    return session.run([&] { output.show(text::forTerminal(session.delegate->statusLine())); },
                       nullptr, [&] { output.flush(); });
}

}  // namespace

int watchAsJSON() {
    Session session(complain);
    ORVPosixRunLoop& loop = session.host.runLoop();
    ORVLineOutput output(loop, STDOUT_FILENO, session.outputEnded());
    const ORVCommandInput input(loop, STDIN_FILENO,
                                [&](const std::string& line) { perform(*session.delegate, line); });
    return session.run([&] { output.show(json::statusItem(session.delegate->statusItem())); },
                       nullptr, [&] { output.flush(); });
}

int watch() {
    if (!isatty(STDOUT_FILENO) || !isatty(STDIN_FILENO) || !ORVTerminalMenu::isPossible()) {
        return watchAsLines();
    }
    // What is said while the menu is on the screen is told when the screen is given back.
    std::vector<std::string> complaints;
    Session session([&](const std::string& complaint) { complaints.push_back(complaint); });
    ORVPosixRunLoop& loop = session.host.runLoop();
    handle(SIGWINCH, wake);
    ORVTerminalMenu terminal(*session.delegate, std::getenv("NO_COLOR") == nullptr);
    handle(SIGCONT, wake);
    loop.watch(STDIN_FILENO, ORVPosixRunLoop::Interest::readable, [&] {
        if (!terminal.readKeys()) {
            loop.stop(kAnswered);
        }
    });
    return session.run([&] { terminal.show(); }, [&] { terminal.redrawAll(); },
                       [&] {
                           terminal.close();
                           std::for_each(complaints.begin(), complaints.end(), complain);
                       });
}

}  // namespace ctl
