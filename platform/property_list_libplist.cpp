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

/// An application's Info.plist has a few kilobytes. libplist recurses over nested containers; what
/// fits into this size cannot exhaust the stack.
constexpr std::size_t kLimitBytes = 256 * 1024;

struct ListDeleter {
    void operator()(void* list) const { plist_free(list); }
};
using List = std::unique_ptr<void, ListDeleter>;

List parse(std::string_view bytes) {
    plist_t list = nullptr;
    const auto length = static_cast<std::uint32_t>(bytes.size());
    if (!bytes.starts_with(kBinaryPropertyListMagic)) {
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
