// Colours text with the eight colours that the user of a terminal can choose.
// Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/coloring.h"

#include <unistd.h>

#include <cstdlib>

#include "shells/terminal/screen.h"

namespace ctl {
namespace {

std::string wrapped(const char* code, std::string_view text) {
    return std::string("\x1b[") + code + 'm' + std::string(text) + "\x1b[0m";
}

}  // namespace

bool isColored(Coloring coloring, int descriptor) {
    if (coloring != Coloring::automatic) {
        return coloring == Coloring::always;
    }
    return isatty(descriptor) && !std::getenv("NO_COLOR") && !terminalIsDumb();
}

bool terminalIsDumb() {
    const char* const terminal = std::getenv("TERM");
    return !terminal || std::string_view(terminal) == "dumb";
}

std::string coloredByPercentage(std::string_view text, double percentage) {
    const terminal::Fullness fullness = terminal::fullnessOf(percentage);
    return wrapped(fullness == terminal::Fullness::low      ? "32"
                   : fullness == terminal::Fullness::middle ? "33"
                                                            : "31",
                   text);
}

std::string coloredStatus(std::string_view title, double percentage) {
    const std::size_t lastWord = title.rfind(' ') + 1;
    return std::string(title.substr(0, lastWord)) +
           coloredByPercentage(title.substr(lastWord), percentage);
}

std::string bold(std::string_view text) {
    return wrapped("1", text);
}

}  // namespace ctl
