// Takes paths apart as bytes. std::filesystem would order and compare them by component.
// Tests: tests/text/unicode_test.cpp.

#include "text/paths.h"

#include <algorithm>

#include "text/bytes.h"

namespace text {
std::string_view lastPathComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::string folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string_view::npos ? "/" : std::string(path.substr(0, slash));
}

bool hasExtension(std::string_view name, std::string_view extension) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) {
        return false;
    }
    const std::string_view found = name.substr(dot + 1);
    return std::equal(found.begin(), found.end(), extension.begin(), extension.end(),
                      [](char a, char b) { return lowerCasedASCII(a) == b; });
}

}  // namespace text
