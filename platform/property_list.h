#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// The string that stands under `key` in a property list, XML or binary, whose root is a
/// dictionary. None when the bytes are no such list, or the value is absent or of another type.
std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key);

}  // namespace platform
