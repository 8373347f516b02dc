#pragma once

#include <vector>

#include "app/ORVMenu.h"
#include "shells/terminal/menu_lines.h"
#include "shells/terminal/screen.h"

/// The status item and its open menu as rows of text, without a terminal.
namespace terminal {

/// The bar, the menu below it and, where there is room, the history and a hint; never more rows
/// than the screen has. On a low screen frame, hint, separators, constant lines and commands are
/// left out in this order, the figures last; the selected item stays.
std::vector<Row> menuRows(const ORVStatusItem& statusItem, const View& view, const Screen& screen);

}  // namespace terminal
