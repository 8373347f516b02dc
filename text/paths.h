#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Questions about paths and names, bytes without an encoding.
namespace text {

/// Returns what follows the last slash: the item's name.
std::string_view lastPathComponent(std::string_view path);

/// Returns the folder that holds an item; its path must be absolute.
std::string folderOf(std::string_view path);

/// Whether a file's name ends in a dot and this extension, letter case disregarded. The extension
/// is given in lower-case ASCII.
bool hasExtension(std::string_view name, std::string_view extension);

}  // namespace text
