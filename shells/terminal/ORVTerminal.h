#pragma once

#include <functional>
#include <string>
#include <vector>

#include "shells/ORVPosixApplication.h"
#include "shells/terminal/screen.h"

// Taking the process's terminal over with curses, and restoring it (terminal_modes.cpp). Used on
// the UI thread only, as curses demands.
namespace terminal {

/// Whether the terminal can place text. A "dumb" terminal and an unknown one cannot.
bool isPossible();

/// Makes the terminal deliver single keys without echo, hides the cursor, and has pasted text
/// marked. The terminal is restored by restore(), while the process is stopped from the keyboard,
/// and when the process dies of a fault, unless the fault is a stack overflow.
void takeOver();

/// Restores the terminal. One that takes no output gets what it takes without waiting.
void restore();

/// Sends what differs from what stands on the terminal.
void refreshScreen();

/// For signal handlers: when the terminal takes no output, restores it as far as that goes and
/// returns true; the process must then end at once, since it may be waiting for the terminal, or
/// begin to.
bool endIfStuck();

inline constexpr int kEscapeKey = 27;

/// Keys in addition to those of curses: the marks before and after pasted text.
extern const int kPasteBegins;
extern const int kPasteEnds;

}  // namespace terminal

/// This process's terminal while curses draws on the whole of it. Used on the UI thread only.
///
/// The constructor takes the terminal over. Screen, cursor and modes are restored when it is closed
/// or destroyed, and when the process dies of a fault, unless the fault is a stack overflow.
class ORVTerminal {
public:
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

/// What a whole terminal shows, and what its keys do. Used on the UI thread only.
class ORVTerminalPage {
public:
    virtual ~ORVTerminalPage() = default;

    /// Returns at most as many rows as the screen has, each as wide as the screen.
    virtual std::vector<terminal::Row> rows(const terminal::Screen& screen) = 0;

    /// Does what the key stands for; keys are numbered as curses does.
    virtual void pressed(int key) = 0;
};

/// Shows a page on this process's terminal. Both must outlive the surface.
class ORVTerminalSurface final : public ORVSurface {
public:
    ORVTerminalSurface(ORVTerminal& terminal, ORVTerminalPage& page)
        : terminal_(terminal), page_(page) {}

    void show() override { terminal_.draw(page_.rows(terminal_.screen())); }
    void redraw() override { terminal_.resize(); }
    void close() override { terminal_.close(); }

private:
    ORVTerminal& terminal_;
    ORVTerminalPage& page_;
};
