#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Writing JSON. Keys keep the order in which they are given; there are no spaces between tokens.
namespace text {

/// A string as JSON; bytes that are not UTF-8 become U+FFFD.
std::string quotedJSON(std::string_view bytes);

/// A finite number with the fewest digits that read back as the same double.
std::string numberJSON(double value);

/// A quoted string, or null.
std::string quotedJSONOrNull(const std::optional<std::string>& bytes);

/// An object from keys, which are quoted here, and values, which are JSON already.
std::string objectJSON(const std::vector<std::pair<std::string_view, std::string>>& fields);

}  // namespace text
