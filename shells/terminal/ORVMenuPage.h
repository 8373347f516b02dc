#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "shells/terminal/ORVTerminal.h"

/// The status item and its open menu as rows of text.
namespace terminal {

/// The state of the menu in the terminal, in addition to the status item.
struct MenuView {
    const ORVMenuItem* selected = nullptr;
    bool submenuIsOpen = false;
    bool showsKeys = false;  ///< Whether the list of keys takes the menu's place.
    bool leadsBack = false;  ///< Whether a key leads back to a table of tasks.
    const ORVWords* words = &l10n::kEnglishWords;
    ORVHistory history;
    std::string advice;  ///< What to do where no task is shown; "" while one is.
};

/// Returns the items that are shown, from top to bottom; those of an open submenu follow their
/// parent.
std::vector<const ORVMenuItem*> visibleItems(const ORVMenu& menu, bool submenuIsOpen);

/// Returns the bar, the menu below it and, when there is room, the advice or the history and a
/// hint; never more rows than the screen has. A low screen lacks the frame, the hint, the
/// separators, the constant lines, the commands, the languages and at last the figures, in this
/// order. The selected item always stays.
std::vector<Row> menuRows(const ORVStatusItem& statusItem, const MenuView& view,
                          const Screen& screen);

}  // namespace terminal

/// The status item and its open menu on a whole terminal. Used on the UI thread only.
class ORVMenuPage final : public ORVTerminalPage {
public:
    /// The delegate must outlive the page.
    explicit ORVMenuPage(ORVAppDelegate& delegate) : delegate_(delegate) {}

    /// Makes Escape and "b" call `leave` where they would do nothing else.
    void setLeave(std::function<void()> leave);

    std::vector<terminal::Row> rows(const terminal::Screen& screen) override;
    void pressed(int key) override;

private:
    void goBack();
    void moveSelection(int step);
    void chooseSelected();
    void setSubmenuOpen(bool isOpen);
    void chooseLanguage(int number);
    const ORVMenuItem* languageItem() const;

    ORVAppDelegate& delegate_;
    std::function<void()> leave_;
    terminal::MenuView view_;
    std::shared_ptr<const ORVHistory> shownHistory_;  ///< Copied into the view.
};
