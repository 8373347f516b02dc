// What the keys of the menu do. Tests: tests/shells/terminal_test.cpp.

#define NCURSES_NOMACROS
#include "shells/terminal/ORVMenuPage.h"

#include <ncurses.h>

#include <algorithm>
#include <utility>

#include "shells/terminal/ORVTerminal.h"

namespace {

/// Whether the item can be selected. A disabled item can, so that the selection stays in its place
/// while feedback disables the item; choosing it then does nothing.
bool isSelectable(const ORVMenuItem& item) {
    return item.action != ORVMenuAction::none || item.submenu;
}

}  // namespace

void ORVMenuPage::setLeave(std::function<void()> leave) {
    leave_ = std::move(leave);
    view_.leadsBack = true;
}

std::vector<terminal::Row> ORVMenuPage::rows(const terminal::Screen& screen) {
    if (!delegate_.statusItem().menu) {
        return {};  // The application is not launched yet.
    }
    view_.words = &delegate_.words();
    view_.advice = delegate_.advice();
    if (delegate_.lastHistory() != shownHistory_) {
        shownHistory_ = delegate_.lastHistory();
        view_.history = shownHistory_ ? *shownHistory_ : ORVHistory();
    }
    return terminal::menuRows(delegate_.statusItem(), view_, screen);
}

void ORVMenuPage::pressed(int key) {
    // Every key closes the list of keys; Escape and the key that opened it do no more than that.
    if (std::exchange(view_.showsKeys, false) && (key == terminal::kEscapeKey || key == '?')) {
        return;
    }
    switch (key) {
        case KEY_UP:
        case 'k':
            return moveSelection(-1);
        case KEY_DOWN:
        case 'j':
            return moveSelection(1);
        case KEY_RIGHT:
            return setSubmenuOpen(view_.submenuIsOpen ||
                                  (view_.selected && view_.selected->submenu));
        case KEY_LEFT:
            return setSubmenuOpen(false);
        case terminal::kEscapeKey:
        case 'b':
            return goBack();
        case KEY_ENTER:
        case '\r':
        case '\n':
            return chooseSelected();
        case '?':
            view_.showsKeys = true;
            return;
        case 'l':
            return setSubmenuOpen(!view_.submenuIsOpen);
        default:
            if (key >= '1' && key <= '9') {
                chooseLanguage(key - '1');
            } else if (key > ' ' && key < 127) {
                delegate_.performKeyEquivalent(std::string(1, static_cast<char>(key)));
            }
    }
}

void ORVMenuPage::goBack() {
    if (view_.submenuIsOpen) {
        setSubmenuOpen(false);
    } else if (leave_) {
        leave_();
    }
}

void ORVMenuPage::moveSelection(int step) {
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

void ORVMenuPage::chooseSelected() {
    if (!view_.selected) {
        return;
    }
    if (view_.selected->submenu) {
        return setSubmenuOpen(!view_.submenuIsOpen);
    }
    const bool isLanguage = view_.selected->action == ORVMenuAction::changeLanguage;
    delegate_.chooseItemNamed(view_.selected->field);
    if (isLanguage) {
        setSubmenuOpen(false);
    }
}

void ORVMenuPage::setSubmenuOpen(bool isOpen) {
    if (view_.submenuIsOpen == isOpen) {
        return;
    }
    view_.submenuIsOpen = isOpen;
    const ORVMenuItem* parent = languageItem();
    view_.selected = isOpen ? parent->submenu->items.front().get() : parent;
}

void ORVMenuPage::chooseLanguage(int number) {
    const ORVMenu& languages = *languageItem()->submenu;
    if (view_.submenuIsOpen && number < static_cast<int>(languages.items.size())) {
        delegate_.chooseItemNamed(languages.items[static_cast<std::size_t>(number)]->field);
        setSubmenuOpen(false);
    }
}

const ORVMenuItem* ORVMenuPage::languageItem() const {
    const auto& items = delegate_.statusItem().menu->items;
    return std::find_if(items.begin(), items.end(),
                        [](const auto& item) { return item->submenu != nullptr; })
        ->get();
}
