// Draws the menu with curses and passes keys to the delegate.
// Tests: tests/shells/terminal_test.cpp.

#define NCURSES_NOMACROS  // Its macros have the names of members: move, clear, erase.
#include "shells/terminal/ORVTerminalMenu.h"

#include <ncurses.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "shells/terminal/menu_rows.h"
#include "shells/terminal/terminal_modes.h"

namespace {

constexpr int kEscapeKey = 27;

/// Each level has two pairs of colours: one with the level's colour for the text, and one with it
/// behind the text.
constexpr short kLevels = 3;

short colourPair(const terminal::Style& style) {
    const auto level = static_cast<short>(style.fullness);
    return static_cast<short>(level > 0 && style.isReversed ? level + kLevels : level);
}

/// Whether the item can be selected. A disabled item can, so that the selection stays in its place
/// while feedback disables the item; choosing it then does nothing.
bool isSelectable(const ORVMenuItem& item) {
    return item.action != ORVMenuAction::none || item.submenu;
}

}  // namespace

bool ORVTerminalMenu::isPossible() {
    return terminal::isPossible();
}

ORVTerminalMenu::ORVTerminalMenu(ORVAppDelegate& delegate, bool isColoured) : delegate_(delegate) {
    screen_.showsUnicode = terminal::setUpCharacters();
    if (!screen_.showsUnicode) {
        delegate_.showOnlyEnglish();
    }
    terminal::takeOver();
    if (isColoured) {
        beginColours();
    }
    getmaxyx(stdscr, screen_.rows, screen_.columns);
}

ORVTerminalMenu::~ORVTerminalMenu() {
    close();
}

void ORVTerminalMenu::close() {
    if (!std::exchange(isClosed_, true)) {
        terminal::restore();
    }
}

/// Prepares colours that can be read on a black and on a white background.
void ORVTerminalMenu::beginColours() {
    if (!has_colors() || start_color() != OK || use_default_colors() != OK ||
        COLOR_PAIRS <= 2 * kLevels) {
        return;
    }
    struct Level {
        short colour;
        short textOnIt;
    };
    constexpr Level kOfEight[kLevels] = {
        {COLOR_GREEN, COLOR_BLACK}, {COLOR_YELLOW, COLOR_BLACK}, {COLOR_RED, COLOR_WHITE}};
    constexpr Level kOf256[kLevels] = {{28, 231}, {136, 16}, {160, 231}};
    for (short i = 0; i < kLevels; ++i) {
        const Level& level = COLORS >= 256 ? kOf256[i] : kOfEight[i];
        init_pair(static_cast<short>(i + 1), level.colour, -1);
        init_pair(static_cast<short>(i + 1 + kLevels), level.textOnIt, level.colour);
    }
    hasColours_ = true;
}

void ORVTerminalMenu::show() {
    if (isClosed_ || !delegate_.statusItem().menu) {
        return;
    }
    view_.locale = delegate_.locale();
    if (delegate_.lastHistory() != shownHistory_) {
        shownHistory_ = delegate_.lastHistory();
        view_.history = shownHistory_ ? *shownHistory_ : ORVHistory();
    }
    std::vector<terminal::Row> rows = terminal::menuRows(delegate_.statusItem(), view_, screen_);
    if (rows == drawn_) {
        return;
    }
    for (int y = 0; y < screen_.rows; ++y) {
        const auto row = static_cast<std::size_t>(y);
        move(y, 0);
        if (row < rows.size()) {
            draw(rows[row]);
        } else {
            clrtoeol();
        }
    }
    refresh();  // Sends the difference to what stands on the terminal.
    drawn_ = std::move(rows);
}

void ORVTerminalMenu::draw(const terminal::Row& row) const {
    for (const terminal::Piece& piece : row) {
        const short pair = hasColours_ ? colourPair(piece.style) : short{0};
        const bool isReversed = piece.style.isReversed && pair == 0;
        attr_set((isReversed ? A_REVERSE : A_NORMAL) | (piece.style.isDimmed ? A_DIM : A_NORMAL) |
                     (piece.style.isBold ? A_BOLD : A_NORMAL),
                 pair, nullptr);
        addstr(piece.text.c_str());
    }
    attr_set(A_NORMAL, 0, nullptr);
}

void ORVTerminalMenu::redraw() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
        resizeterm(size.ws_row, size.ws_col);
    }
    getmaxyx(stdscr, screen_.rows, screen_.columns);
    drawn_.clear();
    clearok(stdscr, TRUE);
}

bool ORVTerminalMenu::readKeys() {
    bool isAnyKey = false;
    for (int key = getch(); key != ERR; key = getch()) {
        isAnyKey = true;
        // curses reports a change of size as a key; the signal that comes with it is handled.
        if (key != KEY_RESIZE && !isPasted(key) && !closesKeys(key)) {
            pressed(key);
        }
    }
    // A descriptor that is ready but gives no key may mean that the terminal is gone.
    return isAnyKey || (isatty(STDIN_FILENO) && tcgetpgrp(STDIN_FILENO) >= 0);
}

/// Whether the key belongs to pasted text. The end of such text is one key for curses or, when it
/// arrives in parts, six.
bool ORVTerminalMenu::isPasted(int key) {
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

/// Every key closes the list of keys. Returns whether the key does no more than that, as Escape and
/// the key that opened the list.
bool ORVTerminalMenu::closesKeys(int key) {
    return std::exchange(view_.showsKeys, false) && (key == kEscapeKey || key == '?');
}

void ORVTerminalMenu::pressed(int key) {
    switch (key) {
        case KEY_UP:
        case 'k':
            moveSelection(-1);
            break;
        case KEY_DOWN:
        case 'j':
            moveSelection(1);
            break;
        case KEY_RIGHT:
            if (view_.selected && view_.selected->submenu) {
                setSubmenuOpen(true);
            }
            break;
        case KEY_LEFT:
        case kEscapeKey:
            setSubmenuOpen(false);
            break;
        case KEY_ENTER:
        case '\r':
        case '\n':
            chooseSelected();
            break;
        case '?':
            view_.showsKeys = true;
            break;
        case 'l':
            setSubmenuOpen(!view_.submenuIsOpen);
            break;
        default:
            if (key >= '1' && key <= '9') {
                chooseLanguage(key - '1');
            } else if (key > ' ' && key < 127) {
                delegate_.performKeyEquivalent(std::string(1, static_cast<char>(key)));
            }
    }
}

void ORVTerminalMenu::moveSelection(int step) {
    std::vector<const ORVMenuItem*> items =
        terminal::visibleItems(*delegate_.statusItem().menu, view_.submenuIsOpen);
    std::erase_if(items, [](const ORVMenuItem* item) { return !isSelectable(*item); });
    if (items.empty()) {
        return;
    }
    const auto count = static_cast<int>(items.size());
    const auto found = std::find(items.begin(), items.end(), view_.selected);
    const int position =
        found == items.end() ? (step > 0 ? -1 : count) : static_cast<int>(found - items.begin());
    view_.selected = items[static_cast<std::size_t>((position + step + count) % count)];
}

void ORVTerminalMenu::chooseSelected() {
    if (!view_.selected) {
        return;
    }
    if (view_.selected->submenu) {
        setSubmenuOpen(!view_.submenuIsOpen);
        return;
    }
    const bool isLanguage = view_.selected->action == ORVMenuAction::changeLanguage;
    delegate_.chooseItemNamed(view_.selected->field);
    if (isLanguage) {
        setSubmenuOpen(false);
    }
}

void ORVTerminalMenu::setSubmenuOpen(bool isOpen) {
    if (view_.submenuIsOpen == isOpen) {
        return;
    }
    view_.submenuIsOpen = isOpen;
    const ORVMenuItem* parent = languageItem();
    view_.selected = isOpen ? parent->submenu->items.front().get() : parent;
}

void ORVTerminalMenu::chooseLanguage(int number) {
    const ORVMenu& languages = *languageItem()->submenu;
    if (view_.submenuIsOpen && number < static_cast<int>(languages.items.size())) {
        delegate_.chooseItemNamed(languages.items[static_cast<std::size_t>(number)]->field);
        setSubmenuOpen(false);
    }
}

const ORVMenuItem* ORVTerminalMenu::languageItem() const {
    const auto& items = delegate_.statusItem().menu->items;
    return std::find_if(items.begin(), items.end(),
                        [](const auto& item) { return item->submenu != nullptr; })
        ->get();
}
