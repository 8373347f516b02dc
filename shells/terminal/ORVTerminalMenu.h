#pragma once

#include <string>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "sessions/ORVHistoryEvent.h"
#include "shells/terminal/menu_lines.h"
#include "shells/terminal/screen.h"

/// The status item and its open menu on this process's terminal. UI thread only.
///
/// Takes the terminal over when it is made, and leaves screen, cursor and modes as found when it is
/// closed, destroyed, or the process dies of a fault other than a full stack.
class ORVTerminalMenu {
public:
    /// Whether the terminal can place text: not a "dumb" one, or one that is not known.
    static bool isPossible();

    /// Made before the application is launched: a terminal that shows ASCII alone makes it speak
    /// English. `isColoured`: colours are wanted; where the terminal has none there are none.
    ORVTerminalMenu(ORVAppDelegate& delegate, bool isColoured);
    ~ORVTerminalMenu();
    ORVTerminalMenu(const ORVTerminalMenu&) = delete;
    ORVTerminalMenu& operator=(const ORVTerminalMenu&) = delete;

    /// The history of the task that is shown, drawn at the next show(); empty for none.
    void setHistory(std::vector<ORVHistoryEvent> history) { view_.history = std::move(history); }

    /// Draws what changed since the last time.
    void show();

    /// Draws everything, at the terminal's size of this moment: after a resize, or a stop.
    void redrawAll();

    /// Takes the keys that were pressed. False when the terminal is gone.
    bool readKeys();

    void close();

private:
    void beginColours();
    void draw(const terminal::Row& row) const;

    void pressed(int key);
    bool isPasted(int key);
    bool closesKeys(int key);
    void moveSelection(int step);
    void chooseSelected();
    void setSubmenuOpen(bool isOpen);
    void chooseLanguage(int number);
    const ORVMenuItem* languageItem() const;

    ORVAppDelegate& delegate_;
    terminal::View view_;
    terminal::Screen screen_;
    std::vector<terminal::Row> drawn_;
    bool hasColours_ = false;
    bool isPasting_ = false;
    std::string pasted_;  ///< The last bytes of the text that is being pasted.
    bool isClosed_ = false;
};
