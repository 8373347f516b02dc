// Takes paths and names apart. Tests: tests/text/unicode_test.cpp,
// tests/sessions/discovery_test.cpp, tests/focus/focus_test.cpp.

#include "text/bytes.h"

#include <algorithm>

namespace text {
namespace {

bool isHexadecimal(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

}  // namespace

bool isUUID(std::string_view text) {
    constexpr std::string_view kForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    static_assert(kForm.size() == kUUIDLength);
    return std::equal(text.begin(), text.end(), kForm.begin(), kForm.end(),
                      [](char c, char form) { return form == '-' ? c == '-' : isHexadecimal(c); });
}

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
