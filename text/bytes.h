#pragma once

#include <string.h>

#include <cstddef>
#include <string>
#include <string_view>

/// Questions about bytes without an encoding: paths, names and identifiers. std::filesystem would
/// order and compare paths by component.
namespace text {

inline constexpr std::size_t kUUIDLength = 36;

/// Returns the lower-case letter of an ASCII capital, and every other byte unchanged.
inline char lowerCasedASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Does what std::string_view::find does, several times as fast: that one compares byte by byte
/// wherever the first byte occurs.
inline std::size_t findBytes(std::string_view text, std::string_view part, std::size_t from = 0) {
    if (from > text.size()) {
        return std::string_view::npos;
    }
    const void* found = memmem(text.data() + from, text.size() - from, part.data(), part.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : std::string_view::npos;
}

inline bool containsBytes(std::string_view text, std::string_view part) {
    return findBytes(text, part) != std::string_view::npos;
}

/// Whether a text is a UUID in its 8-4-4-4-12 hexadecimal form, in either letter case, and nothing
/// more.
bool isUUID(std::string_view text);

/// Returns what follows the last slash: the item's name.
std::string_view lastPathComponent(std::string_view path);

/// Returns the folder that holds an item; its path must be absolute.
std::string folderOf(std::string_view path);

/// Whether a file's name ends in a dot and this extension, letter case disregarded. The extension
/// is given in lower-case ASCII.
bool hasExtension(std::string_view name, std::string_view extension);

}  // namespace text
