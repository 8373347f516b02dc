// Property lists through libplist, with its known weaknesses kept out of reach.

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "platform/binary_property_list.h"
#include "platform/property_list.h"
#include "platform/unicode.h"

namespace platform {
namespace {

/// An application's Info.plist has a few kilobytes.
constexpr std::size_t kLimitBytes = 256 * 1024;

/// Whether the containers of an XML list are nested no deeper than a list may be.
bool isShallowXML(std::string_view text) {
    std::size_t depth = 0;
    for (std::size_t i = text.find('<'); i != std::string_view::npos; i = text.find('<', i + 1)) {
        const std::string_view tag = text.substr(i + 1, text.find('>', i) - i);
        const bool isOpened = tag.starts_with("dict") || tag.starts_with("array");
        if (isOpened && !tag.ends_with("/>") && ++depth > kPropertyListDepth) {
            return false;
        }
        if ((tag.starts_with("/dict") || tag.starts_with("/array")) && depth > 0) {
            --depth;
        }
    }
    return true;
}

struct ListDeleter {
    void operator()(void* list) const { plist_free(list); }
};
using List = std::unique_ptr<void, ListDeleter>;

List parse(std::string_view bytes) {
    plist_t list = nullptr;
    const auto length = static_cast<std::uint32_t>(bytes.size());
    if (!bytes.starts_with(kBinaryPropertyListMagic)) {
        if (!isShallowXML(bytes)) {
            return nullptr;
        }
        plist_from_xml(bytes.data(), length, &list);
    } else if (binaryPropertyListIsTree(bytes)) {
        plist_from_bin(bytes.data(), length, &list);
    }
    return List(list);
}

}  // namespace

std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key) {
    if (bytes.empty() || bytes.size() > kLimitBytes) {
        return std::nullopt;
    }
    const List list = parse(bytes);
    if (!list || plist_get_node_type(list.get()) != PLIST_DICT) {
        return std::nullopt;
    }
    const plist_t value = plist_dict_get_item(list.get(), key.c_str());
    if (!value || plist_get_node_type(value) != PLIST_STRING) {
        return std::nullopt;
    }
    char* text = nullptr;
    plist_get_string_val(value, &text);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    if (!text || !isValidUTF8(text)) {
        return std::nullopt;
    }
    return text;
}

}  // namespace platform
