#pragma once

#include <string.h>

#include <cstddef>
#include <string_view>

namespace text {

/// The lower-case letter of an ASCII capital; every other byte unchanged.
inline char lowerCasedASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Like std::string_view::find, which compares byte by byte at every occurrence of the first one;
/// the system's search is several times as fast.
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

}  // namespace text
