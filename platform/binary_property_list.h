#pragma once

#include <cstddef>
#include <string_view>

namespace platform {

/// An application's list has three levels. A reader that recurses, or takes the square of the
/// depth, is kept from more than this.
inline constexpr std::size_t kPropertyListDepth = 64;

inline constexpr std::string_view kBinaryPropertyListMagic = "bplist00";

/// Whether every dictionary, array and set of a binary property list is referred to at most once,
/// as every writer of such lists leaves it. One that refers to a container again and again, or in a
/// ring, unfolds without bounds in a reader that copies what it refers to: 100 bytes become
/// gigabytes. Nor may they be nested deeper than kPropertyListDepth. False also for bytes whose
/// table of objects does not fit into them.
bool binaryPropertyListIsTree(std::string_view bytes);

}  // namespace platform
