#pragma once

#include <functional>
#include <string>
#include <vector>

#include "shells/terminal/screen.h"

/// This process's terminal while curses draws on the whole of it. Used on the UI thread only.
///
/// The constructor takes the terminal over. Screen, cursor and modes are restored when it is closed
/// or destroyed, and when the process dies of a fault, unless the fault is a stack overflow.
class ORVTerminal {
public:
    /// Whether the terminal can place text. A "dumb" terminal and an unknown one cannot.
    static bool isPossible();

    /// For signal handlers: whether the process must end at once, because the terminal takes no
    /// output. It is then restored as far as that goes.
    static bool endIfStuck();

    /// `isColoured` asks for colours, if the terminal has them.
    explicit ORVTerminal(bool isColoured);
    ~ORVTerminal();
    ORVTerminal(const ORVTerminal&) = delete;
    ORVTerminal& operator=(const ORVTerminal&) = delete;

    const terminal::Screen& screen() const { return screen_; }

    /// Shows the rows, which are as wide as the screen. Nothing is sent for what stands there
    /// already.
    void draw(std::vector<terminal::Row> rows);

    /// Takes the terminal's present size, and sends everything at the next call of draw.
    void resize();

    /// Passes on the keys that were pressed, as curses numbers them, but not pasted text. Returns
    /// false when the terminal is gone.
    bool readKeys(const std::function<void(int key)>& pressed);

    void close();
    bool isClosed() const { return isClosed_; }

private:
    void beginColours();
    void takeSize();
    void drawRow(const terminal::Row& row) const;
    bool isPasted(int key);

    terminal::Screen screen_;
    std::vector<terminal::Row> drawn_;
    bool hasColours_ = false;
    bool isPasting_ = false;
    std::string pasted_;  ///< The last bytes of the text that is being pasted, to find its end.
    bool isClosed_ = false;
};
