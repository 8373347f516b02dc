// The lines of the menu and of the list of keys: a mark, a text, and the key at the right.
// Tests: tests/shells/terminal_test.cpp.

#include "shells/terminal/menu_lines.h"

#include <string_view>

#include "shells/terminal/screen_text.h"

namespace terminal {
namespace {

constexpr std::string_view kTick = "✓";

/// Returns a character in the place of the item's check mark or system symbol. It is a blank when
/// there is none, and when the text begins with a check mark itself.
std::string_view mark(const ORVMenuItem& item, const Screen& screen) {
    struct StandIn {
        std::string_view name;
        std::string_view unicode;
        std::string_view ascii;
    };
    static constexpr StandIn kStandIns[] = {{"globe", "◎", "@"},
                                            {"arrow.clockwise", "↻", "o"},
                                            {"arrow.triangle.2.circlepath", "⟳", "~"},
                                            {"checkmark.circle.fill", "✔", "*"},
                                            {"exclamationmark.triangle.fill", "▲", "!"},
                                            {"lock.fill", "▣", "#"}};
    if (item.title.starts_with(kTick)) {
        return " ";
    }
    if (item.state) {
        return screen.showsUnicode ? kTick : "*";
    }
    for (const StandIn& standIn : kStandIns) {
        if (item.image && item.image->name == standIn.name) {
            return screen.showsUnicode ? standIn.unicode : standIn.ascii;
        }
    }
    return " ";
}

Need needOf(const ORVMenuItem& item, bool isConstant) {
    if (item.tag) {
        return Need::language;
    }
    if (item.submenu || item.action != ORVMenuAction::none) {
        return Need::command;
    }
    return isConstant ? Need::constant : Need::figure;
}

std::string keyOf(const ORVMenuItem& item) {
    return item.tag ? std::to_string(*item.tag + 1) : item.submenu ? "l" : item.keyEquivalent;
}

/// Returns the arrow of an item with a submenu.
std::string_view arrow(bool isOpen, const Screen& screen) {
    return screen.showsUnicode ? (isOpen ? " ▾" : " ▸") : (isOpen ? " v" : " >");
}

Line lineOf(const ORVMenuItem& item, std::optional<double> percentage, const View& view,
            const Screen& screen) {
    const bool isConstant = item.field == "sourceItem" || item.field == "privacyItem";
    Line line;
    line.need = &item == view.selected ? Need::selected : needOf(item, isConstant);
    line.left = (item.tag ? "     " : " ") + std::string(mark(item, screen)) + " " +
                shown(item.title, screen) + " ";
    line.right = keyOf(item);
    if (item.submenu) {
        line.right += arrow(view.submenuIsOpen, screen);
    }
    if (!line.right.empty()) {
        line.right += ' ';
    }
    line.style.isDimmed = isConstant || !item.enabled;
    line.style.isBold = item.field == "titleItem";
    if (item.field == "contextItem") {
        line.style.fullness = fullnessOf(percentage);
    }
    return line;
}

/// The words about keys. The application's own texts have none, since a menu bar needs none.
struct KeyWords {
    std::string_view move, choose, back, keys;
};

const KeyWords& keyWords(const View& view) {
    static constexpr KeyWords kEnglish = {"Move", "Choose", "Back", "Keys"};
    static constexpr KeyWords kChinese = {"移动", "选择", "返回", "按键"};
    return view.locale == "zh_CN" ? kChinese : kEnglish;
}

}  // namespace

std::vector<const ORVMenuItem*> visibleItems(const ORVMenu& menu, bool submenuIsOpen) {
    std::vector<const ORVMenuItem*> items;
    for (const auto& item : menu.items) {
        if (item->hidden) {
            continue;
        }
        items.push_back(item.get());
        if (item->submenu && submenuIsOpen) {
            for (const auto& sub : item->submenu->items) {
                items.push_back(sub.get());
            }
        }
    }
    return items;
}

std::vector<Line> menuLines(const ORVStatusItem& statusItem, const View& view,
                            const Screen& screen) {
    std::vector<Line> lines;
    for (const ORVMenuItem* item : visibleItems(*statusItem.menu, view.submenuIsOpen)) {
        lines.push_back(item->isSeparator() ? Line{}
                                            : lineOf(*item, statusItem.percentage, view, screen));
    }
    return lines;
}

std::vector<Line> keyLines(const ORVMenu& menu, const View& view, const Screen& screen) {
    const KeyWords& words = keyWords(view);
    std::vector<Line> lines;
    const auto add = [&](std::string_view text, std::string_view keys) {
        lines.push_back(
            {Need::command, " " + shown(text, screen) + "   ", shown(keys, screen) + " ", {}});
    };
    add(words.move, "↑ ↓  k j");
    add(words.choose, "Enter →");
    add(words.back, "Esc ←");
    for (const ORVMenuItem* item : visibleItems(menu, true)) {
        if (!keyOf(*item).empty()) {
            add(item->title, keyOf(*item));
        }
    }
    add(words.keys, "?");
    return lines;
}

std::string keyHint(const View& view, const Screen& screen) {
    const KeyWords& words = keyWords(view);
    return shown(" ↑↓ " + std::string(words.move) + " · Enter " + std::string(words.choose) +
                     " · ? " + std::string(words.keys),
                 screen);
}

}  // namespace terminal
