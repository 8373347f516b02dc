#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Functions that write JSON, without spaces between tokens. Keys keep the order in which they are
/// given.
namespace text {

/// Writes a string; bytes that are not UTF-8 become U+FFFD.
std::string quotedJSON(std::string_view bytes);

/// Writes a finite number without an exponent, with the fewest digits that read back as the same
/// double.
std::string numberJSON(double value);

/// Writes a string, or null.
std::string quotedJSONOrNull(const std::optional<std::string>& bytes);

/// Writes an object from keys, which are quoted here, and values, which are JSON already.
std::string objectJSON(const std::vector<std::pair<std::string_view, std::string>>& fields);

}  // namespace text
