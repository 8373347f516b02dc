// UUIDs as names and log lines hold them. Tests: tests/sessions/discovery_test.cpp,
// tests/focus/focus_test.cpp.

#include "text/identifiers.h"

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

}  // namespace text
