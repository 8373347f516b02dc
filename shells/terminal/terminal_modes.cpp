// Takes the terminal over, and restores it on every way out of the program.
// Tests: tests/shells/terminal_test.cpp.

#define NCURSES_NOMACROS
#include "shells/terminal/ORVTerminal.h"

#include <fcntl.h>
#include <ncurses.h>
#include <poll.h>
#include <signal.h>
#include <term.h>  // Its macros have usual names, so that ours come before it: lines, columns.
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/descriptors.h"

namespace terminal {
namespace {

constexpr int kFaults[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGQUIT};

// Signal handlers restore the terminal and take it over again. They can use global variables only.
termios modesAsFound;
termios modesTaken;
std::string leavingSequence;
std::string takingSequence;
volatile sig_atomic_t isInCurses = 0;
volatile sig_atomic_t isTaken = 0;

/// How long a terminal may take no output before the program ends without it.
constexpr int kPatienceMilliseconds = 400;

void send(std::string_view sequence) {
    [[maybe_unused]] const ssize_t ignored = write(STDOUT_FILENO, sequence.data(), sequence.size());
}

void leaveTerminal() {
    send(leavingSequence);
    tcsetattr(STDIN_FILENO, TCSANOW, &modesAsFound);
}

/// Does the same without waiting for the terminal.
void leaveTerminalAtOnce() {
    const int flags = fcntl(STDOUT_FILENO, F_GETFL);
    fcntl(STDOUT_FILENO, F_SETFL, flags | O_NONBLOCK);
    leaveTerminal();
    fcntl(STDOUT_FILENO, F_SETFL, flags);
}

/// Lets output go on that Ctrl-S has stopped. A Mac takes output all the same, but then waits for
/// it whenever curses changes the modes. Can be called in a signal handler.
void resumeOutput() {
    tcflow(STDOUT_FILENO, TCOON);
}

/// An exit handler, which does nothing at an exit of our own: curses calls exit when it gets no
/// memory. Objects are not destroyed, because the reading thread may use them.
void endForWantOfMemory() {
    if (!isInCurses && !isTaken) {
        return;
    }
    if (isTaken) {
        leaveTerminalAtOnce();
    }
    constexpr std::string_view kSentence = "brimletctl: there is not enough memory\n";
    [[maybe_unused]] const ssize_t ignored =
        write(STDERR_FILENO, kSentence.data(), kSentence.size());
    _exit(EXIT_FAILURE);
}

void dieOf(int signalNumber) {
    if (isInCurses && errno == ENOMEM) {
        endForWantOfMemory();  // curses uses even the memory that it did not get.
    }
    if (isTaken) {
        leaveTerminal();
    }
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
}

/// Does what may take memory.
template <typename Call>
void callCurses(const Call& call) {
    [[maybe_unused]] static const bool kIsPrepared =
        std::atexit(endForWantOfMemory) == 0 && signal(SIGSEGV, dieOf) != SIG_ERR;
    errno = 0;
    isInCurses = 1;
    call();
    isInCurses = 0;
}

/// Stops the process and takes the terminal over again when it goes on. SIGCONT then redraws the
/// screen.
void stopOn(int signalNumber) {
    const int savedError = errno;
    struct sigaction ownAction {};
    leaveTerminal();
    sigaction(signalNumber, nullptr, &ownAction);
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);  // Returns when the process goes on.
    sigaction(signalNumber, &ownAction, nullptr);
    tcsetattr(STDIN_FILENO, TCSANOW, &modesTaken);
    send(takingSequence);
    errno = savedError;
}

/// Installs a handler for stops from the keyboard, unless they are ignored. This must be done
/// before curses begins: its own handler, which it then does not install, would lose stops that
/// come while it draws.
void handleStops() {
    struct sigaction action {};
    sigaction(SIGTSTP, nullptr, &action);
    if (action.sa_handler == SIG_DFL) {
        action.sa_handler = stopOn;
        action.sa_flags = SA_RESTART | SA_NODEFER;
        sigaction(SIGTSTP, &action, nullptr);
    }
}

/// Returns the sequence of this capability, and "" when the terminal lacks it. The library returns
/// -1 in place of a text for the name of a number or a flag. A pause at the end, "$<…>", is cut
/// off.
std::string_view capability(const char* name) {
    const char* sequence = tigetstr(const_cast<char*>(name));  // Older headers take no const.
    if (reinterpret_cast<std::intptr_t>(sequence) == -1 || !sequence) {
        return {};
    }
    const std::string_view text = sequence;
    return text.substr(0, text.find("$<"));
}

/// Returns the sequence that makes the terminal mark pasted text, or stop to do so. A terminal that
/// cannot do it ignores the sequence, provided that its sequences have this form at all.
std::string_view markingPastes(bool isOn) {
    if (!capability("cup").starts_with("\033[")) {
        return {};
    }
    return isOn ? "\033[?2004h" : "\033[?2004l";
}

void prepareSequences() {
    takingSequence = markingPastes(true);
    leavingSequence = markingPastes(false);
    for (const char* name : {"smcup", "smkx", "civis"}) {
        takingSequence += capability(name);
    }
    for (const char* name : {"sgr0", "op", "cnorm", "rmkx", "rmcup"}) {
        leavingSequence += capability(name);
    }
}

}  // namespace

const int kPasteBegins = KEY_MAX + 1;
const int kPasteEnds = KEY_MAX + 2;

bool isPossible() {
    bool isPlaceable = false;
    callCurses([&] {
        int failure = 0;
        const auto isSetUp = [&] { return setupterm(nullptr, STDOUT_FILENO, &failure) == OK; };
        if (isSetUp() || isSetUp()) {  // Want of memory looks like a terminal that is not known.
            isPlaceable = !capability("cup").empty();
            del_curterm(cur_term);
        }
    });
    return isPlaceable;
}

void takeOver() {
    tcgetattr(STDIN_FILENO, &modesAsFound);
    modesTaken = modesAsFound;
    handleStops();
    unsetenv("LINES");  // curses would believe these rather than the terminal.
    unsetenv("COLUMNS");
    callCurses([] { initscr(); });
    isTaken = 1;
    prepareSequences();
    for (const int fault : kFaults) {
        signal(fault, dieOf);
    }
    cbreak();
    noecho();
    nonl();
    intrflush(stdscr, FALSE);  // A signal from the keyboard must not discard output.
    nodelay(stdscr, TRUE);
    keypad(stdscr, TRUE);
    set_escdelay(25);
    curs_set(0);
    define_key("\033[200~", kPasteBegins);
    define_key("\033[201~", kPasteEnds);
    tcgetattr(STDIN_FILENO, &modesTaken);
    send(markingPastes(true));  // curses itself sends everything else.
}

void restore() {
    signal(SIGTSTP, SIG_IGN);  // The program is ending already.
    resumeOutput();
    if (platform::isWritable(STDOUT_FILENO, kPatienceMilliseconds)) {
        callCurses([] { endwin(); });
        send(markingPastes(false));
    } else {
        leaveTerminalAtOnce();
    }
    isTaken = 0;
    for (const int fault : kFaults) {
        signal(fault, SIG_DFL);
    }
}

void refreshScreen() {
    callCurses([] { refresh(); });
}

bool endIfStuck() {
    resumeOutput();
    // poll may be called in a signal handler; curses takes up an interrupted write again.
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    if (poll(&output, 1, kPatienceMilliseconds) != 0) {
        return false;
    }
    leaveTerminalAtOnce();
    return true;
}

}  // namespace terminal
