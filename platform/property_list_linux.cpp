// Reads property lists with pugixml, which does not recurse and does not resolve a document's own
// entities. The binary form is not read: Linux has such a file only when somebody copied it from a
// Mac. Tests: tests/platform/property_list_test.cpp.

#include <cstring>
#include <pugixml.hpp>

#include "platform/program.h"
#include "text/unicode.h"

namespace platform {
namespace {

/// Returns the whole text of an element, which comments and CDATA sections may divide.
std::string textOf(const pugi::xml_node& element) {
    std::string text;
    for (const pugi::xml_node& piece : element) {
        text += piece.value();
    }
    return text;
}

}  // namespace

std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key) {
    pugi::xml_document document;
    if (!document.load_buffer(bytes.data(), bytes.size())) {
        return std::nullopt;
    }
    std::optional<std::string> found;
    for (const pugi::xml_node& name : document.child("plist").child("dict").children("key")) {
        if (textOf(name) == key) {
            const pugi::xml_node value = name.next_sibling();
            const bool isString = std::strcmp(value.name(), "string") == 0;
            found = isString ? std::optional(textOf(value)) : std::nullopt;
        }
    }
    return found && text::isValidUTF8(*found) ? found : std::nullopt;
}

}  // namespace platform
