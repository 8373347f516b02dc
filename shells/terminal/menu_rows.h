#pragma once

#include <vector>

#include "app/ORVMenu.h"
#include "shells/terminal/menu_lines.h"
#include "shells/terminal/screen.h"

/// The status item and its open menu as rows of text.
namespace terminal {

/// Returns the bar, the menu below it and, when there is room, the history and a hint; never more
/// rows than the screen has. A low screen lacks the frame, the hint, the separators, the constant
/// lines, the commands, the languages and at last the figures, in this order. The selected item
/// always stays.
std::vector<Row> menuRows(const ORVStatusItem& statusItem, const View& view, const Screen& screen);

}  // namespace terminal
