// Handles UTF-8. What a character is, utf8proc knows; whether bytes are well formed, simdjson
// checks many at a time. Tests: tests/text/unicode_test.cpp.

#include "text/unicode.h"

#include <simdjson.h>
#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <utility>

#include "text/bytes.h"

namespace text {
namespace {

bool isASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string foldedCase(std::string_view text) {
    if (!isASCII(text) && isValidUTF8(text)) {
        utf8proc_uint8_t* folded = nullptr;
        const auto length =
            utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                         static_cast<utf8proc_ssize_t>(text.size()), &folded, UTF8PROC_CASEFOLD);
        const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(folded, &std::free);
        if (length >= 0) {
            return {reinterpret_cast<const char*>(folded), static_cast<std::size_t>(length)};
        }
    }
    return lowerCasedASCII(text);
}

/// Whether the character changes how text around it is laid out: a control character, a separator
/// of lines or paragraphs, or one that embeds, overrides or isolates a direction.
bool steersText(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code <= 0x9F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

std::string replaced(std::string_view bytes, bool alsoControls) {
    std::string result;
    result.reserve(bytes.size());
    while (!bytes.empty()) {
        const Character next = nextCharacter(bytes);
        if (next.code == kNotACharacter) {
            result += "\uFFFD";
        } else if (alsoControls && steersText(next.code)) {
            result += ' ';
        } else {
            result += bytes.substr(0, next.bytes);
        }
        bytes.remove_prefix(next.bytes);
    }
    return result;
}

bool isWhiteSpace(char32_t code) {
    return code == ' ' || code == '\t' ||
           (code >= 0x80 &&
            utf8proc_category(static_cast<utf8proc_int32_t>(code)) == UTF8PROC_CATEGORY_ZS);
}

bool endsLine(char32_t code) {
    return code == '\n' || code == '\r' || code == 0x85 || code == 0x2028 || code == 0x2029;
}

}  // namespace

bool isValidUTF8(std::string_view bytes) {
    return simdjson::validate_utf8(bytes.data(), bytes.size());
}

Character nextCharacter(std::string_view text) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byteAt(0);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead < 0xC2 || lead > 0xF4 ? 1
                               : lead < 0xE0              ? 2
                               : lead < 0xF0              ? 3
                                                          : 4;
    // Lower second bytes would be overlong; higher ones would give a surrogate or exceed U+10FFFF.
    unsigned char lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned char highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t code = lead & (0x7FU >> length);
    std::size_t count = 1;
    while (count < length && count < text.size() && byteAt(count) >= lowest &&
           byteAt(count) <= highest) {
        code = code << 6U | (byteAt(count) & 0x3FU);
        lowest = 0x80;
        highest = 0xBF;
        ++count;
    }
    return {length > 1 && count == length ? code : kNotACharacter, count};
}

bool containsIgnoringCase(std::string_view text, std::string_view needle) {
    return foldedCase(text).find(foldedCase(needle)) != std::string::npos;
}

std::size_t findWhiteSpace(std::string_view text, std::size_t start) {
    std::size_t position = start;
    while (position < text.size()) {
        if (static_cast<signed char>(text[position]) > ' ') {  // Visible ASCII.
            ++position;
            continue;
        }
        const Character next = nextCharacter(text.substr(position));
        if (isWhiteSpace(next.code)) {
            return position;
        }
        position += next.bytes;
    }
    return text.size();
}

void forEachLine(std::string_view text, const std::function<void(std::string_view)>& visit) {
    std::size_t lineStart = 0;
    std::size_t position = 0;
    while (position < text.size()) {
        const Character next = nextCharacter(text.substr(position));
        if (!endsLine(next.code)) {
            position += next.bytes;
            continue;
        }
        visit(text.substr(lineStart, position - lineStart));
        position += next.bytes;
        if (next.code == '\r' && position < text.size() && text[position] == '\n') {
            ++position;
        }
        lineStart = position;
    }
    if (lineStart < text.size()) {
        visit(text.substr(lineStart));
    }
}

int unicodeWidth(char32_t code) {
    return code == kNotACharacter ? 1 : utf8proc_charwidth(static_cast<utf8proc_int32_t>(code));
}

int columnsOf(std::string_view text, WidthOf widthOf) {
    int columns = 0;
    while (!text.empty()) {
        const Character next = nextCharacter(text);
        columns += widthOf(next.code);
        text.remove_prefix(next.bytes);
    }
    return columns;
}

std::string_view beginning(std::string_view text, int columns, WidthOf widthOf) {
    std::size_t end = 0;
    while (end < text.size()) {
        const Character next = nextCharacter(text.substr(end));
        columns -= widthOf(next.code);
        if (columns < 0) {
            break;
        }
        end += next.bytes;
    }
    return text.substr(0, end);
}

std::string_view wholeCharacters(std::string_view text) {
    std::size_t start = text.size();
    while (start > 0 && (text[start - 1] & 0xC0) == 0x80) {
        --start;
    }
    const bool isCut = start > 0 && nextCharacter(text.substr(start - 1)).code == kNotACharacter;
    return isCut ? text.substr(0, start - 1) : text;
}

std::string withInvalidBytesReplaced(std::string_view bytes) {
    return replaced(bytes, false);
}

std::string forTerminal(std::string_view bytes) {
    return replaced(bytes, true);
}

std::string shortened(std::string_view bytes, std::size_t characters) {
    constexpr std::size_t kBytesOfACharacter = 64;  // A family of four with skin tones has 41.
    const std::size_t mostBytes = characters * kBytesOfACharacter;
    utf8proc_int32_t state = 0;
    utf8proc_int32_t previous = 0;
    std::size_t count = 0;
    std::size_t lastStart = 0;  // Where the last counted character that is kept begins.
    std::size_t position = 0;
    while (position < bytes.size()) {
        const Character next = nextCharacter(bytes.substr(position));
        const auto code =
            static_cast<utf8proc_int32_t>(next.code == kNotACharacter ? 0xFFFD : next.code);
        if (position == 0 || utf8proc_grapheme_break_stateful(previous, code, &state)) {
            if (++count <= characters) {
                lastStart = position;
            }
        }
        if (count > characters || position + next.bytes > mostBytes) {
            return std::string(bytes.substr(0, lastStart)) + "…";
        }
        previous = code;
        position += next.bytes;
    }
    return std::string(bytes);
}

std::string escapedForMarkup(std::string_view text) {
    static constexpr std::pair<char, std::string_view> kEscapes[] = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
    std::string escaped;
    for (const char c : text) {
        const auto* found = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                         [&](const auto& escape) { return escape.first == c; });
        escaped += found == std::end(kEscapes) ? std::string(1, c) : std::string(found->second);
    }
    return escaped;
}

}  // namespace text
