#pragma once

#include <string>
#include <vector>

#include "app/ORVMenu.h"
#include "sessions/ORVHistoryEvent.h"
#include "shells/terminal/screen.h"

/// What stands in the menu, line by line, without a frame.
namespace terminal {

/// What is shown beside the status item's own state.
struct View {
    const ORVMenuItem* selected = nullptr;
    bool submenuIsOpen = false;
    bool showsKeys = false;  ///< In place of the menu.
    std::string locale;      ///< "zh_CN" or "en_US", of the words about keys.
    std::vector<ORVHistoryEvent> history;
};

/// How much a line is needed where not all have room, the least first.
enum class Need { separator, constant, command, language, figure, selected };

struct Line {
    Need need = Need::separator;
    std::string left;   ///< A mark and the text.
    std::string right;  ///< A key, or the submenu's.
    Style style;        ///< Of the left part.
};

/// The items that are shown, from top to bottom; those of an open submenu follow their parent.
std::vector<const ORVMenuItem*> visibleItems(const ORVMenu& menu, bool submenuIsOpen);

std::vector<Line> menuLines(const ORVStatusItem& statusItem, const View& view,
                            const Screen& screen);

/// What the keys do.
std::vector<Line> keyLines(const ORVMenu& menu, const View& view, const Screen& screen);

/// One line for below the menu: the keys that it does not show itself.
std::string keyHint(const View& view, const Screen& screen);

}  // namespace terminal
