// Measures text, makes it fit into columns, and writes rows with their styles.
// Tests: tests/shells/terminal_test.cpp.

#include "shells/terminal/screen.h"

#include <langinfo.h>
#include <locale.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

#include "platform/program.h"
#include "text/bytes.h"
#include "text/unicode.h"

namespace terminal {
namespace {

/// Returns the columns of a character, -1 when the library does not know it.
int widthOf(char32_t code) {
    return wcwidth(static_cast<wchar_t>(code));
}

/// Whether the character makes one picture of several, which some terminals do and others do not:
/// the variants, skin tones and tags of pictures, and the joiner behind a wide character. (Behind
/// other characters the joiner shapes letters.)
bool joinsPictures(char32_t code, int columnsBefore) {
    const auto isIn = [code](char32_t first, char32_t last) {
        return code >= first && code <= last;
    };
    return isIn(0xFE00, 0xFE0F) || isIn(0xE0000, 0xE01EF) ||
           (columnsBefore == 2 && (isIn(0x200D, 0x200D) || isIn(0x1F3FB, 0x1F3FF)));
}

std::string unicodeText(std::string_view text) {
    std::string result;
    int columnsBefore = 0;
    while (!text.empty()) {
        const auto [code, bytes] = text::nextCharacter(text);
        if (!joinsPictures(code, columnsBefore)) {
            columnsBefore = widthOf(code);
            result += columnsBefore < 0 ? "\uFFFD" : text.substr(0, bytes);
        }
        text.remove_prefix(bytes);
    }
    return result;
}

/// Writes the characters of the program's own English texts in ASCII, and "?" for every other one.
std::string asciiText(std::string_view text) {
    static constexpr std::pair<std::string_view, std::string_view> kStandIns[] = {
        {"·", "-"}, {"–", "-"}, {"—", "-"}, {"…", "..."},
        {"✓", "*"}, {"█", "#"}, {"░", "."}, {"\u202F", " "},
        {"↑", "^"}, {"↓", "v"}, {"→", ">"}, {"←", "<"},
        {"▲", "^"}, {"▼", "v"}, {"•", "*"}, {"简体中文", "Simplified Chinese"}};
    std::string result;
    while (!text.empty()) {
        const std::size_t bytes = text::nextCharacter(text).bytes;
        const auto* standIn =
            std::find_if(std::begin(kStandIns), std::end(kStandIns),
                         [&](const auto& pair) { return text.starts_with(pair.first); });
        const bool hasStandIn = standIn != std::end(kStandIns);
        result += hasStandIn ? standIn->second : bytes == 1 ? text.substr(0, 1) : "?";
        text.remove_prefix(hasStandIn ? standIn->first.size() : bytes);
    }
    return result;
}

/// Returns the numbers that select a style, "" for plain text.
std::string codesOf(const Style& style) {
    static constexpr std::string_view kColours[] = {"", "32", "33", "31", "1;31"};
    std::string codes;
    for (const std::string_view code :
         {std::string_view(style.isBold ? "1" : ""), std::string_view(style.isDimmed ? "2" : ""),
          std::string_view(style.isReversed ? "7" : ""),
          kColours[static_cast<std::size_t>(style.fullness)]}) {
        codes += (codes.empty() || code.empty() ? "" : ";") + std::string(code);
    }
    return codes;
}

std::string line(const Row& row, bool isColoured) {
    Row trimmed = row;
    while (!trimmed.empty()) {
        std::string& last = trimmed.back().text;
        last.resize(last.find_last_not_of(' ') + 1);
        if (!last.empty()) {
            break;
        }
        trimmed.pop_back();
    }
    std::string text;
    for (const Piece& piece : trimmed) {
        if (piece.text.empty()) {
            continue;
        }
        const std::string codes = isColoured ? codesOf(piece.style) : "";
        text += codes.empty() ? piece.text : "\x1b[" + codes + "m" + piece.text + "\x1b[0m";
    }
    return text + '\n';
}

std::string localeOfCharacters() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) {
            return value;
        }
    }
    return "UTF-8";
}

}  // namespace

std::string shown(std::string_view text, const Screen& screen) {
    const std::string safe = text::forTerminal(text);
    return screen.showsUnicode ? unicodeText(safe) : asciiText(safe);
}

int textColumns(std::string_view text) {
    return text::columnsOf(text, widthOf);
}

std::string_view beginning(std::string_view text, int columns) {
    return text::beginning(text, columns, widthOf);
}

std::string cut(std::string_view text, int columns, const Screen& screen) {
    if (columns < 1) {
        return {};
    }
    if (textColumns(text) <= columns) {
        return std::string(text);
    }
    return std::string(beginning(text, columns - 1)) + (screen.showsUnicode ? "…" : "~");
}

std::string fitted(std::string_view text, int columns, const Screen& screen) {
    const std::string result = cut(text, columns, screen);
    return result + repeated(" ", columns - textColumns(result));
}

std::string repeated(std::string_view piece, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += piece;
    }
    return result;
}

void append(std::vector<Row>& rows, std::vector<Row> more) {
    std::move(more.begin(), more.end(), std::back_inserter(rows));
}

std::string lines(const std::vector<Row>& rows, bool isColoured) {
    std::string text;
    for (const Row& row : rows) {
        text += line(row, isColoured);
    }
    return text;
}

void show(Row& row, const Screen& screen) {
    int columns = screen.columns;
    for (Piece& piece : row) {
        piece.text = cut(shown(piece.text, screen), columns, screen);
        columns -= textColumns(piece.text);
    }
}

void fit(Row& row, int columns, const Screen& screen) {
    for (Piece& piece : row) {
        piece.text = cut(piece.text, columns, screen);
        columns -= textColumns(piece.text);
    }
    row.push_back({repeated(" ", columns)});
    std::erase_if(row, [](const Piece& piece) { return piece.text.empty(); });
}

bool setUpCharacters() {
    const auto isUTF8 = [] { return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0; };
    if (setlocale(LC_CTYPE, "") && isUTF8()) {
        return true;
    }
    const std::string name = text::lowerCasedASCII(localeOfCharacters());
    const bool namesUTF8 =
        name.find("utf-8") != std::string::npos || name.find("utf8") != std::string::npos;
    if (!namesUTF8) {
        return false;
    }
    // The second name is that of a Mac.
    if (!setlocale(LC_CTYPE, "C.UTF-8") && !setlocale(LC_CTYPE, "UTF-8")) {
        setenv("LOCPATH", platform::localesOfProgram().c_str(), 1);
        setlocale(LC_CTYPE, "C.UTF-8");
    }
    return isUTF8();
}

Screen screenOfOutput() {
    Screen screen;
    screen.showsUnicode = setUpCharacters();
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
        screen.columns = std::min<int>(size.ws_col, kMostColumns);
        screen.rows = std::min<int>(size.ws_row, kMostRows);
    }
    return screen;
}

}  // namespace terminal
