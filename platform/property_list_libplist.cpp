// Property lists through libplist, with its known weaknesses kept out of reach.

#include <plist/plist.h>

#include <cstdint>
#include <memory>

#include "platform/property_list.h"
#include "platform/property_list_form.h"
#include "platform/unicode.h"

namespace platform {
namespace {

struct ListDeleter {
    void operator()(void* list) const { plist_free(list); }
};
using List = std::unique_ptr<void, ListDeleter>;

List parse(std::string_view bytes) {
    plist_t list = nullptr;
    const auto length = static_cast<std::uint32_t>(bytes.size());
    if (isBinaryPropertyList(bytes)) {
        plist_from_bin(bytes.data(), length, &list);
    } else {
        plist_from_xml(bytes.data(), length, &list);
    }
    return List(list);
}

}  // namespace

std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key) {
    if (!isHarmlessPropertyList(bytes)) {
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
    // Not plist_get_string_val, which ends the program for a text with a zero byte.
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(value, &length);
    const std::string_view string(text ? text : "", text ? static_cast<std::size_t>(length) : 0);
    return text && isValidUTF8(string) ? std::optional<std::string>(string) : std::nullopt;
}

}  // namespace platform
