#define NCURSES_NOMACROS  // Its macros have the names of members: move, clear, erase.
#include "shells/terminal/ORVTerminalMenu.h"

#include <langinfo.h>
#include <locale.h>
#include <ncurses.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>
#undef columns  // Of <term.h>.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int kEscapeKey = 27;

// What a dying process needs to leave the terminal as found; a handler can ask nobody.
termios modesAsFound;
std::string restoringSequence;

void restoreTerminal() {
    [[maybe_unused]] const ssize_t ignored =
        write(STDOUT_FILENO, restoringSequence.data(), restoringSequence.size());
    tcsetattr(STDIN_FILENO, TCSANOW, &modesAsFound);
}

void dieOf(int signalNumber) {
    restoreTerminal();
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
}

/// What the terminal wants to be sent for this; "" when it cannot do it. The library answers -1 in
/// place of a text for a name that stands for no text. A pause, "$<…>" at the end, is cut off.
std::string_view capability(const char* name) {
    const char* sequence = tigetstr(const_cast<char*>(name));  // Older headers want it so.
    if (reinterpret_cast<std::intptr_t>(sequence) == -1 || !sequence) {
        return {};
    }
    const std::string_view text = sequence;
    return text.substr(0, text.find("$<"));
}

void restoreOnFault() {
    for (const char* name : {"sgr0", "cnorm", "rmkx", "rmcup"}) {
        restoringSequence += capability(name);
    }
    for (const int fault : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGQUIT}) {
        signal(fault, dieOf);
    }
}

const char* localeOfCharacters() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) {
            return value;
        }
    }
    return nullptr;
}

/// Sets the locale of characters, and nothing else; true when it is UTF-8. Where none is asked for,
/// or the one asked for is not installed but names UTF-8, the terminal is taken for one.
bool setUpCharacters() {
    const auto isUTF8 = [] { return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0; };
    const bool isInstalled = setlocale(LC_CTYPE, "") != nullptr;
    const char* wanted = localeOfCharacters();
    if (isInstalled && isUTF8()) {
        return true;
    }
    const std::string name = wanted ? wanted : "UTF-8";
    const bool namesUTF8 =
        name.find("UTF-8") != std::string::npos || name.find("utf8") != std::string::npos;
    // A Mac knows the second.
    return namesUTF8 && (setlocale(LC_CTYPE, "C.UTF-8") || setlocale(LC_CTYPE, "UTF-8")) &&
           isUTF8();
}

/// Also while it is disabled, so that the selection stays when feedback ends; choosing it then does
/// nothing.
bool isSelectable(const ORVMenuItem& item) {
    return item.action != ORVMenuAction::none || item.submenu;
}

}  // namespace

bool ORVTerminalMenu::isPossible() {
    int failure = 0;
    if (setupterm(nullptr, STDOUT_FILENO, &failure) != OK) {
        return false;
    }
    const bool isPlaceable = !capability("cup").empty();
    del_curterm(cur_term);
    return isPlaceable;
}

ORVTerminalMenu::ORVTerminalMenu(ORVAppDelegate& delegate) : delegate_(delegate) {
    tcgetattr(STDIN_FILENO, &modesAsFound);
    screen_.showsUnicode = setUpCharacters();
    unsetenv("LINES");  // Else they would count for more than the terminal's own size.
    unsetenv("COLUMNS");
    initscr();
    restoreOnFault();
    cbreak();
    noecho();
    nonl();
    nodelay(stdscr, TRUE);
    keypad(stdscr, TRUE);
    set_escdelay(25);
    curs_set(0);
    getmaxyx(stdscr, screen_.rows, screen_.columns);
}

ORVTerminalMenu::~ORVTerminalMenu() {
    close();
}

void ORVTerminalMenu::close() {
    if (!std::exchange(isClosed_, true)) {
        endwin();
    }
}

void ORVTerminalMenu::show() {
    if (isClosed_ || !delegate_.statusItem().menu) {
        return;
    }
    std::vector<terminal::Row> rows =
        terminal::menuRows(delegate_.statusItem(), selected_, submenuIsOpen_, screen_);
    if (rows == drawn_) {
        return;
    }
    for (int y = 0; y < screen_.rows; ++y) {
        const auto row = static_cast<std::size_t>(y);
        move(y, 0);
        if (row >= rows.size()) {
            clrtoeol();
            continue;
        }
        const bool isReversed = rows[row].isBar || rows[row].isSelected;
        attrset(static_cast<int>(isReversed ? A_REVERSE : rows[row].isDimmed ? A_DIM : A_NORMAL));
        addstr(rows[row].text.c_str());
        attrset(A_NORMAL);
    }
    refresh();  // Sends the difference to what stands on the terminal.
    drawn_ = std::move(rows);
}

void ORVTerminalMenu::redrawAll() {
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
        pressed(key);
    }
    // Ready but without a key: the terminal is gone.
    return isAnyKey || (isatty(STDIN_FILENO) && tcgetpgrp(STDIN_FILENO) >= 0);
}

void ORVTerminalMenu::pressed(int key) {
    switch (key) {
        case KEY_UP:
        case KEY_DOWN:
            moveSelection(key == KEY_UP ? -1 : 1);
            break;
        case KEY_RIGHT:
            if (selected_ && selected_->submenu) {
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
        case 'l':
            setSubmenuOpen(!submenuIsOpen_);
            break;
        case '1':
        case '2':
        case '3':
            chooseLanguage(key - '1');
            break;
        default:
            if (key > ' ' && key < 127) {
                delegate_.performKeyEquivalent(std::string(1, static_cast<char>(key)));
            }
    }
}

void ORVTerminalMenu::moveSelection(int step) {
    std::vector<const ORVMenuItem*> items =
        terminal::visibleItems(*delegate_.statusItem().menu, submenuIsOpen_);
    std::erase_if(items, [](const ORVMenuItem* item) { return !isSelectable(*item); });
    if (items.empty()) {
        return;
    }
    const auto count = static_cast<int>(items.size());
    const auto found = std::find(items.begin(), items.end(), selected_);
    const int position =
        found == items.end() ? (step > 0 ? -1 : count) : static_cast<int>(found - items.begin());
    selected_ = items[static_cast<std::size_t>((position + step + count) % count)];
}

void ORVTerminalMenu::chooseSelected() {
    if (!selected_) {
        return;
    }
    if (selected_->submenu) {
        setSubmenuOpen(!submenuIsOpen_);
        return;
    }
    const bool isLanguage = selected_->action == ORVMenuAction::changeLanguage;
    delegate_.chooseItemNamed(selected_->field);
    if (isLanguage) {
        setSubmenuOpen(false);
    }
}

void ORVTerminalMenu::setSubmenuOpen(bool isOpen) {
    if (submenuIsOpen_ == isOpen) {
        return;
    }
    submenuIsOpen_ = isOpen;
    const ORVMenuItem* parent = languageItem();
    selected_ = isOpen ? parent->submenu->items.front().get() : parent;
}

void ORVTerminalMenu::chooseLanguage(int number) {
    const ORVMenu& languages = *languageItem()->submenu;
    if (submenuIsOpen_ && number < static_cast<int>(languages.items.size())) {
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
