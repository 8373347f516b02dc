#pragma once

#include <vector>

#include "shells/ORVSurface.h"
#include "shells/terminal/ORVTerminal.h"

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
