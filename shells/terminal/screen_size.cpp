// The terminal's size for text that is written once. The menu gets it from curses.
// Tests: tests/ctl/brimletctl_test.cpp.

#include "shells/terminal/screen_size.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include "shells/terminal/terminal_modes.h"

namespace terminal {

Screen screenOfOutput() {
    Screen screen;
    screen.showsUnicode = setUpCharacters();
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
        screen.columns = size.ws_col;
        screen.rows = size.ws_row;
    }
    return screen;
}

}  // namespace terminal
