#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "shells/ORVSurface.h"
#include "shells/terminal/menu_lines.h"
#include "shells/terminal/screen.h"

/// The status item and its open menu on this process's terminal. UI thread only.
///
/// Takes the terminal over when it is made, and leaves screen, cursor and modes as found when it is
/// closed, destroyed, or the process dies of a fault other than a full stack.
class ORVTerminalMenu final : public ORVSurface {
public:
    /// Whether the terminal can place text: not a "dumb" one, or one that is not known.
    static bool isPossible();

    /// Made before the application is launched: a terminal that shows ASCII alone makes it speak
    /// English. `isColoured`: colours are wanted; where the terminal has none there are none.
    ORVTerminalMenu(ORVAppDelegate& delegate, bool isColoured);
    ~ORVTerminalMenu() override;
    ORVTerminalMenu(const ORVTerminalMenu&) = delete;
    ORVTerminalMenu& operator=(const ORVTerminalMenu&) = delete;

    /// Draws what changed since the last time.
    void show() override;

    /// Draws everything, at the terminal's size of this moment.
    void redraw() override;

    /// Takes the keys that were pressed. False when the terminal is gone.
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
    std::string pasted_;  ///< The last bytes of the text that is being pasted.
    bool isClosed_ = false;
};
