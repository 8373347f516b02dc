#pragma once

#include <string_view>

namespace platform {

/// Whether a system's reader may be let loose on the bytes: whether they are an XML or a binary
/// property list, not too long, that does not unfold without bounds while it is read.
///
/// Readers recurse, so containers may not be nested deeper than 64 levels; an application's list
/// has three. A binary list may refer to each dictionary, array and set at most once, as every
/// writer leaves it: one that refers to a container again and again, or in a ring, turns 100 bytes
/// into gigabytes in a reader that copies what it refers to.
bool isHarmlessPropertyList(std::string_view bytes);

bool isBinaryPropertyList(std::string_view bytes);

}  // namespace platform
