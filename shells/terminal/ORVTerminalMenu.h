#pragma once

#include <memory>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "shells/terminal/menu_rows.h"

/// The status item and its open menu on this process's terminal. UI thread only.
///
/// Takes the terminal over when it is made, and leaves screen, cursor and modes as found when it is
/// closed, destroyed, or the process dies of a fault other than a full stack.
class ORVTerminalMenu {
public:
    /// Whether the terminal can place text: not a "dumb" one, or one that is not known.
    static bool isPossible();

    explicit ORVTerminalMenu(ORVAppDelegate& delegate);
    ~ORVTerminalMenu();
    ORVTerminalMenu(const ORVTerminalMenu&) = delete;
    ORVTerminalMenu& operator=(const ORVTerminalMenu&) = delete;

    /// Draws what changed since the last time.
    void show();

    /// Draws everything, at the terminal's size of this moment: after a resize, or a stop.
    void redrawAll();

    /// Takes the keys that were pressed. False when the terminal is gone.
    bool readKeys();

    void close();

private:
    void pressed(int key);
    void moveSelection(int step);
    void chooseSelected();
    void setSubmenuOpen(bool isOpen);
    void chooseLanguage(int number);
    const ORVMenuItem* languageItem() const;

    ORVAppDelegate& delegate_;
    const ORVMenuItem* selected_ = nullptr;
    bool submenuIsOpen_ = false;
    terminal::Screen screen_;
    std::vector<terminal::Row> drawn_;
    bool isClosed_ = false;
};
