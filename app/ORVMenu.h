#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The status item and its menu as plain data: everything that a surface shows. The delegate
/// changes them on the UI thread; a surface reads them at the end of a turn and never changes them.

/// A system symbol, and what a screen reader says in its place.
struct ORVMenuImage {
    std::string name;
    std::string description;
    bool operator==(const ORVMenuImage&) const = default;
};

enum class ORVMenuAction { none, refresh, terminate, changeLanguage };

/// What an item means to its reader, for surfaces that can set lines apart.
enum class ORVEmphasis {
    plain,
    headline,  ///< Names the task.
    gauge,     ///< Tells the percentage, and so may have its colour.
    constant,  ///< Never changes, and is the first to go where there is little room.
};

struct ORVMenu;

struct ORVMenuItem {
    std::string field;  ///< The name by which scripts choose the item; "" for a separator.
    std::string title;
    bool enabled = true;
    bool hidden = false;
    ORVEmphasis emphasis = ORVEmphasis::plain;
    ORVMenuAction action = ORVMenuAction::none;
    /// A lower-case letter, pressed with the platform's modifier key; "" for none.
    std::string keyEquivalent;
    std::optional<std::int64_t> tag;  ///< The language mode that the item chooses.
    bool state = false;               ///< Whether the item has a check mark.
    std::optional<ORVMenuImage> image;
    std::unique_ptr<ORVMenu> submenu;

    bool isSeparator() const { return field.empty(); }
};

/// Items from top to bottom. They are made once and keep their addresses, since surfaces and the
/// delegate point at them.
struct ORVMenu {
    std::vector<std::unique_ptr<ORVMenuItem>> items;

    ORVMenuItem* add(const std::string& field) {
        auto item = std::make_unique<ORVMenuItem>();
        item->field = field;
        return items.emplace_back(std::move(item)).get();
    }
    void addSeparator() { items.push_back(std::make_unique<ORVMenuItem>()); }
};

struct ORVStatusItem {
    std::string title;  ///< The text in the menu bar.
    /// How much of the context window the task uses, in percent. It stays while feedback takes the
    /// title's place. None when no usage is known.
    std::optional<double> percentage;
    std::string toolTip;
    std::unique_ptr<ORVMenu> menu;
};
