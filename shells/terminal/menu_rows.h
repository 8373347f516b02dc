#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/ORVMenu.h"

/// The status item and its open menu as rows of text, without a terminal.
namespace terminal {

/// What the terminal can show.
struct Screen {
    int columns = 80;
    int rows = 24;
    bool showsUnicode = true;  ///< Else plain ASCII stands in for everything.
};

/// One row, exactly as wide as the screen.
struct Row {
    std::string text;
    bool isBar = false;  ///< The menu bar, the first row.
    bool isSelected = false;
    bool isDimmed = false;  ///< A disabled item.
    bool operator==(const Row&) const = default;
};

/// The items that are shown, from top to bottom; those of an open submenu follow their parent.
std::vector<const ORVMenuItem*> visibleItems(const ORVMenu& menu, bool submenuIsOpen);

/// The bar and the menu below it. Where the menu has more lines than the screen, the part around
/// the selected item. `selected` may be null.
std::vector<Row> menuRows(const ORVStatusItem& statusItem, const ORVMenuItem* selected,
                          bool submenuIsOpen, const Screen& screen);

/// Columns that a text takes: two for a wide character, none for a combining one.
int textColumns(std::string_view text);

}  // namespace terminal
