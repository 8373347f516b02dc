// Writes JSON for scripts: without spaces, with strings in valid UTF-8.
// Tests: tests/ctl/brimletctl_test.cpp.

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "text/json.h"
#include "text/unicode.h"

namespace text {
namespace {

std::string escaped(char c) {
    constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
    constexpr std::string_view kNames = "\"\\bfnrt";
    const std::size_t name = kNamed.find(c);
    if (name != std::string_view::npos) {
        return {'\\', kNames[name]};
    }
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "\\u%04x",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    return code.data();
}

/// Returns the fewest digits that read back as the value, in the form "d.ddde+xx".
std::string shortestDigits(double value) {
    constexpr int kDigitsOfEveryDouble = 17;
    std::array<char, 64> text{};
    for (int digits = 0; digits < kDigitsOfEveryDouble; ++digits) {
        std::snprintf(text.data(), text.size(), "%.*e", digits, value);
        if (std::strtod(text.data(), nullptr) == value) {
            break;
        }
    }
    return text.data();
}

}  // namespace

std::string quotedJSON(std::string_view bytes) {
    constexpr unsigned char kDelete = 0x7F;
    constexpr unsigned char kFirstAfterControls = 0xA0;
    const std::string valid = withInvalidBytesReplaced(bytes);
    std::string text = "\"";
    for (std::size_t i = 0; i < valid.size(); ++i) {
        const auto byte = static_cast<unsigned char>(valid[i]);
        if (byte == 0xC2 && static_cast<unsigned char>(valid[i + 1]) < kFirstAfterControls) {
            text += escaped(valid[++i]);  // U+0080 to U+009F, whose last byte is their number.
        } else if (byte >= ' ' && byte != kDelete && byte != '"' && byte != '\\') {
            text += valid[i];
        } else {
            text += escaped(valid[i]);
        }
    }
    return text + '"';
}

std::string numberJSON(double value) {
    if (std::signbit(value)) {
        return '-' + numberJSON(-value);
    }
    const std::string scientific = shortestDigits(value);
    const std::size_t exponentMark = scientific.find('e');
    std::string digits = scientific.substr(0, exponentMark);
    std::erase(digits, '.');
    const int exponent = std::atoi(scientific.c_str() + exponentMark + 1);
    const int digitsBeforePoint = exponent + 1;
    const int count = static_cast<int>(digits.size());
    if (digitsBeforePoint <= 0) {
        return "0." + std::string(static_cast<std::size_t>(-digitsBeforePoint), '0') + digits;
    }
    if (digitsBeforePoint >= count) {
        return digits + std::string(static_cast<std::size_t>(digitsBeforePoint - count), '0');
    }
    return digits.insert(static_cast<std::size_t>(digitsBeforePoint), ".");
}

std::string quotedJSONOrNull(const std::optional<std::string>& bytes) {
    return bytes ? quotedJSON(*bytes) : "null";
}

std::string objectJSON(const std::vector<std::pair<std::string_view, std::string>>& fields) {
    std::string text = "{";
    for (const auto& [key, value] : fields) {
        if (text.size() > 1) {
            text += ',';
        }
        text += quotedJSON(key) + ':' + value;
    }
    return text + '}';
}

}  // namespace text
