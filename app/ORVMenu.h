#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The status item and its menu without a platform: everything that a surface shows. The delegate
/// changes it on the UI thread; a surface looks at it at the end of a turn and never changes it.

/// A system symbol, and what a screen reader says of it.
struct ORVMenuImage {
    std::string name;
    std::string description;
    bool operator==(const ORVMenuImage&) const = default;
};

enum class ORVMenuAction { none, refresh, terminate, changeLanguage };

struct ORVMenu;

struct ORVMenuItem {
    std::string field;  ///< Name of the delegate's field that holds it; "" for a separator.
    std::string title;
    bool enabled = true;
    bool hidden = false;
    ORVMenuAction action = ORVMenuAction::none;
    /// A lower-case letter, pressed with the platform's modifier key; "" for none.
    std::string keyEquivalent;
    std::optional<std::int64_t> tag;  ///< Of a language: its mode.
    bool state = false;               ///< Checked.
    std::optional<ORVMenuImage> image;
    std::unique_ptr<ORVMenu> submenu;

    bool isSeparator() const { return field.empty(); }
};

/// Items from top to bottom. They are made once and keep their addresses.
struct ORVMenu {
    std::vector<std::unique_ptr<ORVMenuItem>> items;

    ORVMenuItem* add(const std::string& field);
    void addSeparator();
};

struct ORVStatusItem {
    std::string title;  ///< The text in the menu bar.
    /// The share of the context window in use that the title tells; none where it tells none.
    std::optional<double> percentage;
    std::string toolTip;
    std::unique_ptr<ORVMenu> menu;
};
