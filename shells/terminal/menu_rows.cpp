// The lines of the menu and where they stand, and what a low screen leaves out.
// Tests: tests/shells/terminal_test.cpp.

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "shells/terminal/ORVMenuPage.h"

namespace terminal {
namespace {

constexpr int kRowsOfScreenWithPlot = 24;
constexpr int kMostRowsOfPlot = 12;
constexpr std::string_view kTick = "✓";

/// How much a line is needed. When not all lines have room, the least needed ones are left out;
/// they come first here.
enum class Need { separator, constant, command, language, figure, selected };

struct MenuLine {
    Need need = Need::separator;
    Line line = {.isRule = true};
};

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

Need needOf(const ORVMenuItem& item) {
    if (item.tag) {
        return Need::language;
    }
    if (item.submenu || item.action != ORVMenuAction::none) {
        return Need::command;
    }
    return item.emphasis == ORVEmphasis::constant ? Need::constant : Need::figure;
}

std::string keyOf(const ORVMenuItem& item) {
    return item.tag ? std::to_string(*item.tag + 1) : item.submenu ? "l" : item.keyEquivalent;
}

/// Returns the arrow of an item with a submenu.
std::string_view arrow(bool isOpen, const Screen& screen) {
    return screen.showsUnicode ? (isOpen ? " ▾" : " ▸") : (isOpen ? " v" : " >");
}

MenuLine lineOf(const ORVMenuItem& item, std::optional<double> percentage, const MenuView& view,
                const Screen& screen) {
    Line line;
    line.isSelected = &item == view.selected;
    line.left = (item.tag ? "     " : " ") + std::string(mark(item, screen)) + " " +
                shown(item.title, screen) + " ";
    line.right = keyOf(item);
    if (item.submenu) {
        line.right += arrow(view.submenuIsOpen, screen);
    }
    if (!line.right.empty()) {
        line.right += ' ';
    }
    line.style.isDimmed = item.emphasis == ORVEmphasis::constant || !item.enabled;
    line.style.isBold = item.emphasis == ORVEmphasis::headline;
    if (item.emphasis == ORVEmphasis::gauge) {
        line.style.fullness = app::fullnessOf(percentage);
    }
    return {line.isSelected ? Need::selected : needOf(item), std::move(line)};
}

std::vector<MenuLine> menuLines(const ORVStatusItem& statusItem, const MenuView& view,
                                const Screen& screen) {
    std::vector<MenuLine> lines;
    for (const ORVMenuItem* item : visibleItems(*statusItem.menu, view.submenuIsOpen)) {
        lines.push_back(item->isSeparator() ? MenuLine{}
                                            : lineOf(*item, statusItem.percentage, view, screen));
    }
    return lines;
}

std::vector<MenuLine> linesAboutKeys(const ORVMenu& menu, const MenuView& view,
                                     const Screen& screen) {
    const ORVWords& words = *view.words;
    std::vector<Key> keys = {{words.move, "↑ ↓  k j"},
                             {words.choose, "Enter →"},
                             {words.back, view.leadsBack ? "Esc b" : "Esc ←"}};
    for (const ORVMenuItem* item : visibleItems(menu, view.submenuIsOpen)) {
        if (!keyOf(*item).empty()) {
            keys.emplace_back(item->title, keyOf(*item));
        }
    }
    keys.emplace_back(words.keys, "?");
    std::vector<MenuLine> lines;
    for (Line& line : keyLines(keys, screen)) {
        lines.push_back({Need::command, std::move(line)});
    }
    return lines;
}

/// Removes the least needed lines, the lowest of them first, until the others have room.
void leaveOut(std::vector<MenuLine>& lines, int room) {
    while (static_cast<int>(lines.size()) > room) {
        const auto least =
            std::min_element(lines.rbegin(), lines.rend(),
                             [](const MenuLine& a, const MenuLine& b) { return a.need < b.need; });
        lines.erase(std::next(least).base());
    }
}

std::vector<Line> withoutNeeds(const std::vector<MenuLine>& lines) {
    std::vector<Line> result;
    for (const MenuLine& each : lines) {
        result.push_back(each.line);
    }
    return result;
}

/// Adds what stands below the menu, with a free row before it and one after it.
void addFoot(std::vector<Row>& rows, const MenuView& view, const Screen& screen) {
    const int room = screen.rows - static_cast<int>(rows.size()) - 2;
    std::vector<Row> foot;
    if (!view.advice.empty() && room > 0) {
        foot.push_back({{" " + shown(view.advice, screen), {.isBold = true}}});
    } else if (screen.rows >= kRowsOfScreenWithPlot) {
        foot = plotRows(view.history, std::min(room, kMostRowsOfPlot), *view.words, screen);
    }
    if (!foot.empty()) {
        rows.emplace_back();
        append(rows, std::move(foot));
    }
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

std::vector<Row> menuRows(const ORVStatusItem& statusItem, const MenuView& view,
                          const Screen& screen) {
    std::vector<MenuLine> lines = view.showsKeys ? linesAboutKeys(*statusItem.menu, view, screen)
                                                 : menuLines(statusItem, view, screen);
    const int free = screen.rows - 1 - static_cast<int>(lines.size());
    // Of all lines, so that the frame keeps its width when the selection moves.
    const int widest = widestOf(withoutNeeds(lines));
    leaveOut(lines, screen.rows - 1);
    std::vector<Row> rows = {gaugeBar(statusItem.title, statusItem.percentage, screen)};
    append(rows, framed(withoutNeeds(lines), widest, free > 2, screen));
    if (free > 0) {
        addFoot(rows, view, screen);
        rows.resize(static_cast<std::size_t>(screen.rows - 1));
        const ORVWords& words = *view.words;
        rows.push_back(
            keyHint({{words.move, "↑↓"}, {words.choose, "Enter"}, {words.keys, "?"}}, screen));
    }
    fitScreen(rows, screen);
    return rows;
}

}  // namespace terminal
