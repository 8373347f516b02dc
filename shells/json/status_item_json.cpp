// Writes the status item as JSON. Scripts rely on the keys and their order.
// Tests: tests/ctl/brimletctl_test.cpp.

#include "shells/json/status_item_json.h"

#include <utility>
#include <vector>

#include "text/json_writing.h"

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
    std::string text = "[";
    for (const auto& item : shown.items) {
        if (text.size() > 1) {
            text += ',';
        }
        text += menuItem(*item);
    }
    return text + ']';
}

}  // namespace

std::string statusItem(const ORVStatusItem& statusItem) {
    return text::objectJSON({{"title", text::quotedJSON(statusItem.title)},
                             {"toolTip", text::quotedJSON(statusItem.toolTip)},
                             {"menu", menu(*statusItem.menu)}});
}

}  // namespace json
