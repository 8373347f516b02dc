#include "shells/terminal/menu_rows.h"

#include <utf8proc.h>

#include <algorithm>
#include <utility>

#include "text/unicode.h"

namespace terminal {
namespace {

struct Character {
    std::string_view bytes;
    int columns;
};

/// The next character of a text that is valid UTF-8.
Character nextCharacter(std::string_view text) {
    utf8proc_int32_t code = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &code);
    if (length < 1) {
        return {text.substr(0, 1), 1};
    }
    return {text.substr(0, static_cast<std::size_t>(length)), utf8proc_charwidth(code)};
}

/// Plain ASCII for the characters that the program itself uses; "?" for every other one.
std::string asciiText(std::string_view text) {
    static constexpr std::pair<std::string_view, std::string_view> kStandIns[] = {
        {"·", "-"},   {"–", "-"},   {"…", "..."}, {"✓", "*"},      {"：", ": "},
        {"，", ", "}, {"（", " ("}, {"）", ")"},  {"\u202F", " "}, {"—", "-"}};
    std::string result;
    while (!text.empty()) {
        const Character next = nextCharacter(text);
        const auto* standIn =
            std::find_if(std::begin(kStandIns), std::end(kStandIns),
                         [&](const auto& pair) { return pair.first == next.bytes; });
        if (next.bytes.size() == 1) {
            result += next.bytes;
        } else {
            result += standIn != std::end(kStandIns) ? standIn->second : "?";
        }
        text.remove_prefix(next.bytes.size());
    }
    return result;
}

/// One column in place of a system symbol.
std::string_view symbol(const ORVMenuItem& item, const Screen& screen) {
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
    if (item.state) {
        return screen.showsUnicode ? "✓" : "*";
    }
    for (const StandIn& standIn : kStandIns) {
        if (item.image && item.image->name == standIn.name) {
            return screen.showsUnicode ? standIn.unicode : standIn.ascii;
        }
    }
    return " ";
}

std::string shown(const std::string& text, const Screen& screen) {
    const std::string safe = text::forTerminal(text);
    return screen.showsUnicode ? safe : asciiText(safe);
}

std::string repeated(std::string_view piece, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += piece;
    }
    return result;
}

/// The text in exactly this many columns, cut with an ellipsis or filled with spaces.
std::string fitted(std::string_view text, int columns, const Screen& screen) {
    if (columns <= 0) {
        return {};
    }
    int used = textColumns(text);
    if (used <= columns) {
        return std::string(text) + repeated(" ", columns - used);
    }
    std::string result;
    used = 0;
    while (!text.empty()) {
        const Character next = nextCharacter(text);
        if (used + next.columns > columns - 1) {
            break;
        }
        result += next.bytes;
        used += next.columns;
        text.remove_prefix(next.bytes.size());
    }
    result += screen.showsUnicode ? "…" : "~";
    return result + repeated(" ", columns - used - 1);
}

/// The text between the borders: a mark, the title, and at the right the key or the submenu's
/// arrow.
struct Line {
    const ORVMenuItem* item = nullptr;
    std::string left;
    std::string right;
};

Line lineOf(const ORVMenuItem& item, bool isInSubmenu, bool submenuIsOpen, const Screen& screen) {
    Line line;
    line.item = &item;
    line.left = " " + repeated(" ", isInSubmenu ? 4 : 0) + std::string(symbol(item, screen)) + " " +
                shown(item.title, screen) + " ";
    if (isInSubmenu) {
        line.right = std::to_string(*item.tag + 1) + " ";
    } else if (item.submenu) {
        const std::string_view arrow =
            submenuIsOpen ? (screen.showsUnicode ? "▾" : "v") : (screen.showsUnicode ? "▸" : ">");
        line.right = "l " + std::string(arrow) + " ";
    } else if (!item.keyEquivalent.empty()) {
        line.right = item.keyEquivalent + " ";
    }
    return line;
}

std::vector<Line> menuLines(const ORVMenu& menu, bool submenuIsOpen, const Screen& screen) {
    std::vector<Line> lines;
    for (const ORVMenuItem* item : visibleItems(menu, submenuIsOpen)) {
        const bool isInSubmenu = item->tag.has_value();
        lines.push_back(item->isSeparator() ? Line{item, "", ""}
                                            : lineOf(*item, isInSubmenu, submenuIsOpen, screen));
    }
    return lines;
}

/// The first of the lines that are shown, so that the selected one is among them, with all of an
/// open submenu that it stands in.
std::size_t firstShown(const std::vector<Line>& lines, const ORVMenuItem* selected,
                       std::size_t room) {
    const auto found = std::find_if(lines.begin(), lines.end(),
                                    [&](const Line& line) { return line.item == selected; });
    auto last = found;
    while (last != lines.end() && last->item->tag && last + 1 != lines.end() &&
           (last + 1)->item->tag) {
        ++last;
    }
    const bool submenuFits = static_cast<std::size_t>(last - found) < room;
    const auto position = static_cast<std::size_t>((submenuFits ? last : found) - lines.begin());
    if (!selected || found == lines.end() || position < room) {
        return 0;
    }
    return position + 1 - room;
}

}  // namespace

int textColumns(std::string_view text) {
    int columns = 0;
    while (!text.empty()) {
        const Character next = nextCharacter(text);
        columns += next.columns;
        text.remove_prefix(next.bytes.size());
    }
    return columns;
}

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

std::vector<Row> menuRows(const ORVStatusItem& statusItem, const ORVMenuItem* selected,
                          bool submenuIsOpen, const Screen& screen) {
    constexpr int kBorders = 2;
    const std::vector<Line> lines = menuLines(*statusItem.menu, submenuIsOpen, screen);
    int inner = 0;
    for (const Line& line : lines) {
        inner = std::max(inner, textColumns(line.left) + textColumns(line.right));
    }
    inner = std::max(0, std::min(inner, screen.columns - kBorders));
    const int indent = std::max(0, screen.columns - inner - kBorders);
    const auto framed = [&](std::string_view left, const std::string& middle,
                            std::string_view right) {
        return fitted(repeated(" ", indent) + std::string(left) + middle + std::string(right),
                      screen.columns, screen);
    };
    const bool isUnicode = screen.showsUnicode;
    const std::string rule = repeated(isUnicode ? "─" : "-", inner);
    const std::string_view side = isUnicode ? "│" : "|";

    const std::string title = " " + shown(statusItem.title, screen) + " ";
    const int barIndent = std::max(0, screen.columns - textColumns(title));
    std::vector<Row> rows = {
        {fitted(repeated(" ", barIndent) + title, screen.columns, screen), true}};

    // On a screen too low for a frame's two rules the lines matter more.
    const bool hasRules = screen.rows >= static_cast<int>(lines.size()) + 3;
    const int room = screen.rows - 1 - (hasRules ? 2 : 0);
    if (room < 1) {
        return rows;
    }
    if (hasRules) {
        rows.push_back({framed(isUnicode ? "┌" : "+", rule, isUnicode ? "┐" : "+")});
    }
    const std::size_t first = firstShown(lines, selected, static_cast<std::size_t>(room));
    for (std::size_t i = first; i < lines.size() && i < first + static_cast<std::size_t>(room);
         ++i) {
        const Line& line = lines[i];
        if (line.item->isSeparator()) {
            rows.push_back({framed(isUnicode ? "├" : "+", rule, isUnicode ? "┤" : "+")});
            continue;
        }
        const int rightColumns = std::min(textColumns(line.right), inner);
        const std::string middle = fitted(line.left, inner - rightColumns, screen) +
                                   fitted(line.right, rightColumns, screen);
        rows.push_back(
            {framed(side, middle, side), false, line.item == selected, !line.item->enabled});
    }
    if (hasRules) {
        rows.push_back({framed(isUnicode ? "└" : "+", rule, isUnicode ? "┘" : "+")});
    }
    return rows;
}

}  // namespace terminal
