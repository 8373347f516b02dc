#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "shells/ORVSurface.h"
#include "shells/terminal/menu_lines.h"
#include "shells/terminal/screen.h"

/// The status item and its open menu on this process's terminal. Used on the UI thread only.
///
/// The constructor takes the terminal over. Screen, cursor and modes are restored when the menu is
/// closed or destroyed, and when the process dies of a fault, unless the fault is a stack overflow.
class ORVTerminalMenu final : public ORVSurface {
public:
    /// Whether the terminal can place text. A "dumb" terminal and an unknown one cannot.
    static bool isPossible();

    /// Must be made before the application is launched, because a terminal that can only show ASCII
    /// makes it speak English. `isColoured` asks for colours, if the terminal has them.
    ORVTerminalMenu(ORVAppDelegate& delegate, bool isColoured);
    ~ORVTerminalMenu() override;
    ORVTerminalMenu(const ORVTerminalMenu&) = delete;
    ORVTerminalMenu& operator=(const ORVTerminalMenu&) = delete;

    /// Draws what has changed since the last call.
    void show() override;

    /// Takes the terminal's present size and draws everything at the next call of show.
    void redraw() override;

    /// Handles the keys that were pressed. Returns false when the terminal is gone.
    bool readKeys();

    void close() override;

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
    std::shared_ptr<const ORVHistory> shownHistory_;  ///< Copied into the view.
    terminal::Screen screen_;
    std::vector<terminal::Row> drawn_;
    bool hasColours_ = false;
    bool isPasting_ = false;
    std::string pasted_;  ///< The last bytes of the text that is being pasted, to find its end.
    bool isClosed_ = false;
};
