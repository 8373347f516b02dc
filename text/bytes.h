#pragma once

#include <string.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// Questions about bytes without an encoding: paths, names and identifiers. std::filesystem would
/// order and compare paths by component.
namespace text {

/// So many bytes behind a text must be readable where vector code reads it; their values mean
/// nothing.
inline constexpr std::size_t kReadableBytesBeyond = 64;

/// Returns the lower-case letter of an ASCII capital, and every other byte unchanged.
inline char lowerCasedASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
inline std::string lowerCasedASCII(std::string_view text) {
    std::string lower(text);
    std::transform(text.begin(), text.end(), lower.begin(),
                   [](char c) { return lowerCasedASCII(c); });
    return lower;
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
inline bool isUUID(std::string_view text) {
    constexpr std::string_view kForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    const auto hasForm = [](char c, char form) {
        const char lower = lowerCasedASCII(c);
        return form == '-' ? c == '-' : (c >= '0' && c <= '9') || (lower >= 'a' && lower <= 'f');
    };
    return std::equal(text.begin(), text.end(), kForm.begin(), kForm.end(), hasForm);
}

/// Returns the first UUID in a text that begins at `start` or behind it; "" when there is none.
inline std::string_view findUUID(std::string_view text, std::size_t start = 0) {
    constexpr std::size_t kLength = 36;
    constexpr std::size_t kFirstDash = 8;
    for (std::size_t i = start; i + kLength <= text.size(); ++i) {
        if (text[i + kFirstDash] == '-' && isUUID(text.substr(i, kLength))) {
            return text.substr(i, kLength);
        }
    }
    return {};
}

/// Returns what follows the last slash: the item's name.
inline std::string_view lastPathComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// Returns the folder that holds an item; its path must be absolute.
inline std::string folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string_view::npos ? "/" : std::string(path.substr(0, slash));
}

/// Whether a file's name ends in a dot and this extension, letter case disregarded. The extension
/// is given in lower-case ASCII.
inline bool hasExtension(std::string_view name, std::string_view extension) {
    const std::size_t dot = name.rfind('.');
    const std::string_view found = dot == name.npos ? "" : name.substr(dot + 1);
    return dot != name.npos &&
           std::equal(found.begin(), found.end(), extension.begin(), extension.end(),
                      [](char a, char b) { return lowerCasedASCII(a) == b; });
}

}  // namespace text
