// Writes the status item as JSON: whole for scripts, which rely on the keys and their order, and in
// short for status bars, which take its texts for markup.
// Tests: tests/ctl/brimletctl_test.cpp.

#include <utility>
#include <vector>

#include "app/figures.h"
#include "shells/lines/answers.h"
#include "text/json.h"
#include "text/unicode.h"

namespace json {
namespace {

std::string boolean(bool value) {
    return value ? "true" : "false";
}

std::string menu(const ORVMenu& shown);

std::string menuItem(const ORVMenuItem& item) {
    if (item.isSeparator()) {
        return text::objectJSON({{"separator", "true"}});
    }
    std::vector<std::pair<std::string_view, std::string>> fields = {
        {"item", text::quotedJSON(item.field)},
        {"title", text::quotedJSON(item.title)},
        {"enabled", boolean(item.enabled)},
        {"hidden", boolean(item.hidden)}};
    if (item.tag) {
        fields.emplace_back("tag", std::to_string(*item.tag));
        fields.emplace_back("state", boolean(item.state));
    }
    if (item.image) {
        fields.emplace_back("image", text::quotedJSON(item.image->name));
        fields.emplace_back("imageDescription", text::quotedJSON(item.image->description));
    }
    if (!item.keyEquivalent.empty()) {
        fields.emplace_back("keyEquivalent", text::quotedJSON(item.keyEquivalent));
    }
    if (item.submenu) {
        fields.emplace_back("submenu", menu(*item.submenu));
    }
    return text::objectJSON(fields);
}

std::string menu(const ORVMenu& shown) {
    return text::arrayJSON(shown.items, [](const auto& item) { return menuItem(*item); });
}

std::string_view classFor(std::optional<double> percentage) {
    static constexpr std::string_view kNames[] = {"unknown", "low", "medium", "high", "full"};
    return kNames[static_cast<std::size_t>(app::fullnessOf(percentage))];
}

}  // namespace

std::string statusItem(const ORVStatusItem& statusItem) {
    return text::objectJSON({{"title", text::quotedJSON(statusItem.title)},
                             {"toolTip", text::quotedJSON(statusItem.toolTip)},
                             {"menu", menu(*statusItem.menu)}});
}

std::string waybar(const ORVAppDelegate& delegate) {
    const ORVStatusItem& item = delegate.statusItem();
    std::string toolTip;
    for (const std::string& line : delegate.informationLines()) {
        toolTip += (toolTip.empty() ? "" : "\n") + text::escapedForMarkup(text::forTerminal(line));
    }
    return text::objectJSON({{"text", text::quotedJSON(text::escapedForMarkup(item.title))},
                             {"tooltip", text::quotedJSON(toolTip)},
                             {"class", text::quotedJSON(classFor(item.percentage))},
                             {"percentage", app::wholePercent(item.percentage.value_or(0))}});
}

}  // namespace json
