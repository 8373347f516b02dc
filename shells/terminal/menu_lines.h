#pragma once

#include <string>
#include <vector>

#include "app/ORVMenu.h"
#include "sessions/ORVHistoryEvent.h"
#include "shells/terminal/screen.h"

/// The menu's lines, without a frame.
namespace terminal {

/// The state of the menu in the terminal, in addition to the status item.
struct View {
    const ORVMenuItem* selected = nullptr;
    bool submenuIsOpen = false;
    bool showsKeys = false;  ///< Whether the list of keys takes the menu's place.
    std::string locale;      ///< Of the words about keys, such as "en_US".
    std::vector<ORVHistoryEvent> history;
};

/// How much a line is needed. When not all lines have room, the least needed ones are left out;
/// they come first here.
enum class Need { separator, constant, command, language, figure, selected };

struct Line {
    Need need = Need::separator;
    std::string left;   ///< A mark and the text.
    std::string right;  ///< The key that chooses the item.
    Style style;        ///< The style of the left part.
};

/// Returns the items that are shown, from top to bottom; those of an open submenu follow their
/// parent.
std::vector<const ORVMenuItem*> visibleItems(const ORVMenu& menu, bool submenuIsOpen);

/// Returns the lines of the menu.
std::vector<Line> menuLines(const ORVStatusItem& statusItem, const View& view,
                            const Screen& screen);

/// Returns lines that tell what each key does.
std::vector<Line> keyLines(const ORVMenu& menu, const View& view, const Screen& screen);

/// Returns the line below the menu, which tells the keys that the menu does not show.
std::string keyHint(const View& view, const Screen& screen);

}  // namespace terminal
