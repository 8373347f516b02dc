#pragma once

#include <cstddef>
#include <string_view>

namespace text {

inline constexpr std::size_t kUUIDLength = 36;

/// Whether a text is a UUID in its 8-4-4-4-12 hexadecimal form, in either letter case, and nothing
/// more.
bool isUUID(std::string_view text);

}  // namespace text
