// Makes the reading thread, handles signals, begins the loop and ends it. Tests:
// tests/ctl/brimletctl_test.cpp, tests/platform/confinement_test.cpp.

#include "shells/ORVPosixApplication.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "app/ORVTaskViewer.h"

namespace {

// Signal handlers can use global variables only.
ORVPosixRunLoop* signalledLoop = nullptr;
volatile sig_atomic_t endWasAskedFor = 0;
bool (*mustEndAtOnce)() = nullptr;

void askForEnd(int) {
    const int savedError = errno;
    endWasAskedFor = 1;
    if (mustEndAtOnce && mustEndAtOnce()) {
        _exit(EXIT_SUCCESS);
    }
    signalledLoop->wakeFromSignal();
    errno = savedError;
}

void wake(int) {
    signalledLoop->wakeFromSignal();
}

/// Installs a handler. A signal that the parent process ignores stays ignored: nohup and a script's
/// background jobs rely on it.
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

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

std::unique_ptr<ORVUserDefaults> defaultsThatComplain(
    const std::function<void(std::string_view)>& complain) {
    return platform::standardUserDefaults([complain](const ORVStoringFailure& failure) {
        complain("cannot store the language in " + failure.path + ": " + failure.reason);
    });
}

}  // namespace

ORVPosixApplication::ORVPosixApplication(ORVPosixHost::Settings settings,
                                         const std::function<void(std::string_view)>& complain)
    : complain_(complain),
      host_(std::move(settings), platform::makeFiles(), defaultsThatComplain(complain), complain),
      delegate_(std::make_shared<ORVAppDelegate>(host_)) {
    signalledLoop = &host_.runLoop();
    for (const int signalNumber : kEndingSignals) {
        handle(signalNumber, askForEnd);
    }
}

void ORVPosixApplication::redrawOn(int signalNumber) {
    handle(signalNumber, wake);
}

void ORVPosixApplication::endAtOnceIf(bool (*condition)()) {
    mustEndAtOnce = condition;
}

int ORVPosixApplication::run(ORVSurface& surface) {
    ORVPosixRunLoop& loop = host_.runLoop();
    if (!loop.isUsable()) {
        surface.close();
        complain_("no file descriptors are left");
        return EXIT_FAILURE;
    }
    loop.setTurnEnd([&surface] { surface.show(); });
    loop.setWakened([&loop, &surface] {
        if (endWasAskedFor) {
            loop.stop(EXIT_SUCCESS);
        } else {
            surface.redraw();
        }
    });
    loop.post([this] { delegate_->applicationDidFinishLaunching(); });
    const int status = loop.run();
    surface.close();
    if (loop.failure() == ENOMEM) {
        complain_("there is not enough memory");
    } else if (loop.failure() != 0) {
        complain_("cannot wait for events: " + platform::posixError(loop.failure()).description);
    }
    if (!host_.readerIsIdle()) {
        _exit(status);  // The thread that hangs still uses the application's memory.
    }
    for (const int signalNumber : kEndingSignals) {
        handle(signalNumber, SIG_IGN);  // The program is ending already.
    }
    for (const int signalNumber : {SIGWINCH, SIGCONT}) {
        handle(signalNumber, SIG_DFL);
    }
    loop.dropClosures();
    return status;
}

ORVPosixHost::ORVPosixHost(Settings settings, std::unique_ptr<ORVFiles> files,
                           std::unique_ptr<ORVUserDefaults> userDefaults,
                           std::function<void(std::string_view)> complain)
    : settings_(std::move(settings)),
      files_(std::move(files)),
      userDefaults_(std::move(userDefaults)),
      complain_(std::move(complain)) {}

std::unique_ptr<ORVSerialQueue> ORVPosixHost::makeSerialQueue(const std::string&) {
    auto queue = std::make_unique<platform::ReadingQueue>(
        runLoop_, ORVTaskViewer(*files_, clock_, settings_.codexHome, {}).placesToRead());
    if (!queue->hasThread()) {
        complain_("cannot start a thread");
        runLoop_.stop(EXIT_FAILURE);
    }
    queue_ = queue.get();
    return queue;
}

bool ORVPosixHost::readerIsIdle() {
    constexpr std::chrono::milliseconds kPatience(100);
    return !queue_ || queue_->waitUntilIdle(kPatience);
}
