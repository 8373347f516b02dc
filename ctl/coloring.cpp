// Colours by the eight that every terminal lets its user choose.
// Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/coloring.h"

#include <unistd.h>

#include <cstdlib>

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
    const char* terminal = std::getenv("TERM");
    return isatty(descriptor) && !std::getenv("NO_COLOR") && terminal &&
           std::string_view(terminal) != "dumb";
}

std::string coloredByPercentage(std::string_view text, double percentage) {
    return wrapped(percentage < 60 ? "32" : percentage < 85 ? "33" : "31", text);
}

std::string bold(std::string_view text) {
    return wrapped("1", text);
}

std::string dimmed(std::string_view text) {
    return wrapped("2", text);
}

}  // namespace ctl
