#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Returns the string under `key` in the root dictionary of a property list; none when the bytes
/// are not such a list, or the value is absent or of another type. Linux reads the XML form only.
std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key);

}  // namespace platform
