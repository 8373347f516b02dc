// Makes text fit into columns. Tests: tests/shells/terminal_test.cpp.

#include "shells/terminal/screen_text.h"

#include <wchar.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "text/unicode.h"

namespace terminal {
namespace {

struct Character {
    std::string_view bytes;
    wchar_t code;
    int columns;  ///< -1 when the library does not know the character.
};

/// Returns the first character of a text, which must be valid UTF-8.
Character nextCharacter(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    unsigned code = length == 1 ? lead : lead & (0x7FU >> length);
    for (const char c : text.substr(1, length - 1)) {
        code = code << 6 | (static_cast<unsigned char>(c) & 0x3FU);
    }
    const auto wide = static_cast<wchar_t>(code);
    return {text.substr(0, length), wide, wcwidth(wide)};
}

/// Whether the character makes one picture of several, which some terminals do and others do not:
/// the variants, skin tones and tags of pictures, and the joiner behind a wide character. (Behind
/// other characters the joiner shapes letters.)
bool joinsPictures(const Character& character, int columnsBefore) {
    const auto isIn = [&](wchar_t first, wchar_t last) {
        return character.code >= first && character.code <= last;
    };
    return isIn(0xFE00, 0xFE0F) || isIn(0xE0000, 0xE01EF) ||
           (columnsBefore == 2 && (isIn(0x200D, 0x200D) || isIn(0x1F3FB, 0x1F3FF)));
}

std::string unicodeText(std::string_view text) {
    std::string result;
    int columnsBefore = 0;
    while (!text.empty()) {
        const Character next = nextCharacter(text);
        text.remove_prefix(next.bytes.size());
        if (joinsPictures(next, columnsBefore)) {
            continue;
        }
        result += next.columns < 0 ? "\uFFFD" : next.bytes;
        columnsBefore = next.columns;
    }
    return result;
}

/// Writes the characters of the program's own English texts in ASCII, and "?" for every other one.
std::string asciiText(std::string_view text) {
    static constexpr std::pair<std::string_view, std::string_view> kStandIns[] = {
        {"·", "-"},
        {"–", "-"},
        {"—", "-"},
        {"…", "..."},
        {"✓", "*"},
        {"█", "#"},
        {"░", "."},
        {"\u202F", " "},
        {"↑", "^"},
        {"↓", "v"},
        {"→", ">"},
        {"←", "<"},
        {"简体中文", "Simplified Chinese"}};
    std::string result;
    while (!text.empty()) {
        const Character next = nextCharacter(text);
        const auto* standIn =
            std::find_if(std::begin(kStandIns), std::end(kStandIns),
                         [&](const auto& pair) { return text.starts_with(pair.first); });
        const bool hasStandIn = standIn != std::end(kStandIns);
        result += hasStandIn ? standIn->second : next.bytes.size() == 1 ? next.bytes : "?";
        text.remove_prefix(hasStandIn ? standIn->first.size() : next.bytes.size());
    }
    return result;
}

}  // namespace

std::string shown(std::string_view text, const Screen& screen) {
    const std::string safe = text::forTerminal(text);
    return screen.showsUnicode ? unicodeText(safe) : asciiText(safe);
}

int textColumns(std::string_view text) {
    int columns = 0;
    while (!text.empty()) {
        const Character next = nextCharacter(text);
        columns += next.columns;
        text.remove_prefix(next.bytes.size());
    }
    return columns;
}

std::string_view beginning(std::string_view text, int columns) {
    std::size_t end = 0;
    while (end < text.size()) {
        const Character next = nextCharacter(text.substr(end));
        if (next.columns > columns) {
            break;
        }
        columns -= next.columns;
        end += next.bytes.size();
    }
    return text.substr(0, end);
}

std::string fitted(std::string_view text, int columns, const Screen& screen) {
    if (columns < 1) {
        return {};
    }
    std::string result(text);
    if (textColumns(text) > columns) {
        result = std::string(beginning(text, columns - 1)) + (screen.showsUnicode ? "…" : "~");
    }
    return result + repeated(" ", columns - textColumns(result));
}

std::string repeated(std::string_view piece, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += piece;
    }
    return result;
}

}  // namespace terminal
