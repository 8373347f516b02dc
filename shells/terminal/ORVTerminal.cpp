// Draws rows with curses and reads keys. Tests: tests/shells/terminal_test.cpp.

#define NCURSES_NOMACROS  // Its macros have the names of members: move, clear, erase.
#include "shells/terminal/ORVTerminal.h"

#include <ncurses.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace {

/// Each step of fullness has two pairs of colours: one with the step's colour for the text, and one
/// with it behind the text.
constexpr short kSteps = 4;

short colourPair(const terminal::Style& style) {
    const auto step = static_cast<short>(style.fullness);
    return static_cast<short>(step > 0 && style.isReversed ? step + kSteps : step);
}

}  // namespace

ORVTerminal::ORVTerminal(bool isColoured) {
    screen_.showsUnicode = terminal::setUpCharacters();
    try {
        terminal::takeOver();
    } catch (const std::bad_alloc&) {
        close();
        throw;
    }
    if (isColoured) {
        beginColours();
    }
    takeSize();
}

ORVTerminal::~ORVTerminal() {
    close();
}

void ORVTerminal::close() {
    if (!std::exchange(isClosed_, true)) {
        terminal::restore();
    }
}

/// Prepares colours that can be read on a black and on a white background.
void ORVTerminal::beginColours() {
    if (!has_colors() || start_color() != OK || use_default_colors() != OK ||
        COLOR_PAIRS <= 2 * kSteps) {
        return;
    }
    struct Step {
        short colour;
        short textOnIt;
    };
    constexpr Step kOfEight[kSteps] = {{COLOR_GREEN, COLOR_BLACK},
                                       {COLOR_YELLOW, COLOR_BLACK},
                                       {COLOR_RED, COLOR_WHITE},
                                       {COLOR_RED, COLOR_WHITE}};
    constexpr Step kOf256[kSteps] = {{28, 231}, {136, 16}, {166, 16}, {160, 231}};
    for (short i = 0; i < kSteps; ++i) {
        const Step& step = COLORS >= 256 ? kOf256[i] : kOfEight[i];
        init_pair(static_cast<short>(i + 1), step.colour, -1);
        init_pair(static_cast<short>(i + 1 + kSteps), step.textOnIt, step.colour);
    }
    hasColours_ = true;
}

void ORVTerminal::draw(std::vector<terminal::Row> rows) {
    if (isClosed_ || rows == drawn_) {
        return;
    }
    for (int y = 0; y < screen_.rows; ++y) {
        const auto row = static_cast<std::size_t>(y);
        if (row < rows.size() && row < drawn_.size() && rows[row] == drawn_[row]) {
            continue;
        }
        move(y, 0);
        if (row < rows.size()) {
            drawRow(rows[row]);
        } else {
            clrtoeol();
        }
    }
    terminal::refreshScreen();
    drawn_ = std::move(rows);
}

void ORVTerminal::drawRow(const terminal::Row& row) const {
    for (const terminal::Piece& piece : row) {
        const short pair = hasColours_ ? colourPair(piece.style) : short{0};
        const bool isReversed = piece.style.isReversed && pair == 0;
        const bool isBold = piece.style.isBold || piece.style.fullness == app::Fullness::full;
        attr_set((isReversed ? A_REVERSE : A_NORMAL) | (piece.style.isDimmed ? A_DIM : A_NORMAL) |
                     (isBold ? A_BOLD : A_NORMAL),
                 pair, nullptr);
        addstr(piece.text.c_str());
    }
    attr_set(A_NORMAL, 0, nullptr);
}

void ORVTerminal::resize() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
        resizeterm(std::min<int>(size.ws_row, terminal::kMostRows),
                   std::min<int>(size.ws_col, terminal::kMostColumns));
    }
    takeSize();
    drawn_.clear();
    clearok(stdscr, TRUE);
}

void ORVTerminal::takeSize() {
    getmaxyx(stdscr, screen_.rows, screen_.columns);
}

bool ORVTerminal::readKeys(const std::function<void(int key)>& pressed) {
    bool isAnyKey = false;
    for (int key = getch(); key != ERR; key = getch()) {
        isAnyKey = true;
        // curses reports a change of size as a key; the signal that comes with it is handled.
        if (key != KEY_RESIZE && !isPasted(key)) {
            pressed(key);
        }
    }
    // A descriptor that is ready but gives no key may mean that the terminal is gone.
    return isAnyKey || (isatty(STDIN_FILENO) && tcgetpgrp(STDIN_FILENO) >= 0);
}

/// Whether the key belongs to pasted text. The end of such text is one key for curses or, when it
/// arrives in parts, six.
bool ORVTerminal::isPasted(int key) {
    constexpr std::string_view kEnd = "\033[201~";
    const bool wasPasting = isPasting_;
    if (key == terminal::kPasteBegins) {
        isPasting_ = true;
        pasted_.clear();
    } else if (wasPasting) {
        pasted_ += static_cast<char>(key);
        if (pasted_.size() > kEnd.size()) {
            pasted_.erase(0, 1);
        }
        isPasting_ = key != terminal::kPasteEnds && pasted_ != kEnd;
    }
    return wasPasting || isPasting_;
}
