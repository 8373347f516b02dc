// Handles UTF-8 with utf8proc. Plain ASCII, the most frequent text, is passed over eight bytes at a
// time.
// Tests: tests/text/unicode_test.cpp.

#include "text/unicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "text/bytes.h"

namespace text {
namespace {

constexpr utf8proc_int32_t kNotACharacter = -1;

struct Decoded {
    utf8proc_int32_t character;  ///< kNotACharacter for bytes that are not UTF-8.
    std::size_t bytes;           ///< At least 1.
};

bool isASCII(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// Returns how many bytes at the beginning of a text are ASCII, or up to seven fewer: eight bytes
/// are tested at a time.
std::size_t asciiBytes(std::string_view text) {
    std::size_t count = 0;
    std::uint64_t eight = 0;
    while (text.size() - count >= sizeof eight) {
        std::memcpy(&eight, text.data() + count, sizeof eight);
        if ((eight & 0x8080808080808080U) != 0) {
            break;
        }
        count += sizeof eight;
    }
    return count;
}

bool isASCII(std::string_view text) {
    text.remove_prefix(asciiBytes(text));
    return std::all_of(text.begin(), text.end(), [](char c) { return isASCII(c); });
}

/// Returns how many bytes of an ill-formed sequence one U+FFFD replaces: those that could have
/// begun a character, but at least one.
std::size_t illFormedLength(std::string_view bytes) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = byteAt(0);
    std::size_t length = 1;
    unsigned char lowest = 0x80;
    unsigned char highest = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        lowest = lead == 0xE0 ? 0xA0 : lowest;    // A lower byte would be overlong.
        highest = lead == 0xED ? 0x9F : highest;  // A higher byte would give a surrogate.
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        lowest = lead == 0xF0 ? 0x90 : lowest;    // A lower byte would be overlong.
        highest = lead == 0xF4 ? 0x8F : highest;  // A higher byte would exceed U+10FFFF.
    }
    std::size_t count = 1;
    while (count < length && count < bytes.size() && byteAt(count) >= lowest &&
           byteAt(count) <= highest) {
        lowest = 0x80;
        highest = 0xBF;
        ++count;
    }
    return count;
}

Decoded decode(std::string_view bytes) {
    if (isASCII(bytes.front())) {
        return {bytes.front(), 1};
    }
    utf8proc_int32_t character = kNotACharacter;
    const auto length = static_cast<utf8proc_ssize_t>(std::min<std::size_t>(bytes.size(), 4));
    const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(bytes.data()),
                                       length, &character);
    if (used < 1) {
        return {kNotACharacter, illFormedLength(bytes)};
    }
    return {character, static_cast<std::size_t>(used)};
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
    std::string folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), lowerCasedASCII);
    return folded;
}

/// Whether the character changes how text around it is laid out: a control character, a separator
/// of lines or paragraphs, or one that embeds, overrides or isolates a direction.
bool steersText(utf8proc_int32_t character) {
    return utf8proc_category(character) == UTF8PROC_CATEGORY_CC ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

std::string replaced(std::string_view bytes, bool alsoControls) {
    std::string result;
    result.reserve(bytes.size());
    while (!bytes.empty()) {
        const Decoded next = decode(bytes);
        if (next.character == kNotACharacter) {
            result += "\uFFFD";
        } else if (alsoControls && steersText(next.character)) {
            result += ' ';
        } else {
            result += bytes.substr(0, next.bytes);
        }
        bytes.remove_prefix(next.bytes);
    }
    return result;
}

bool isWhiteSpace(utf8proc_int32_t character) {
    if (character < 0x80) {
        return character == ' ' || character == '\t';
    }
    return utf8proc_category(character) == UTF8PROC_CATEGORY_ZS;
}

int widthOf(const Decoded& decoded) {
    return decoded.character == kNotACharacter ? 1 : utf8proc_charwidth(decoded.character);
}

bool endsLine(utf8proc_int32_t character) {
    return character == '\n' || character == '\r' || character == 0x85 || character == 0x2028 ||
           character == 0x2029;
}

}  // namespace

bool isValidUTF8(std::string_view bytes) {
    bytes.remove_prefix(asciiBytes(bytes));
    while (!bytes.empty()) {
        const Decoded next = decode(bytes);
        if (next.character == kNotACharacter) {
            return false;
        }
        bytes.remove_prefix(next.bytes);
        if (next.bytes > 1) {
            bytes.remove_prefix(asciiBytes(bytes));
        }
    }
    return true;
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
        const Decoded next = decode(text.substr(position));
        if (isWhiteSpace(next.character)) {
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
        const Decoded next = decode(text.substr(position));
        if (!endsLine(next.character)) {
            position += next.bytes;
            continue;
        }
        visit(text.substr(lineStart, position - lineStart));
        position += next.bytes;
        if (next.character == '\r' && position < text.size() && text[position] == '\n') {
            ++position;
        }
        lineStart = position;
    }
    if (lineStart < text.size()) {
        visit(text.substr(lineStart));
    }
}

int columnsOf(std::string_view text) {
    int columns = 0;
    while (!text.empty()) {
        const Decoded next = decode(text);
        columns += widthOf(next);
        text.remove_prefix(next.bytes);
    }
    return columns;
}

std::string_view beginning(std::string_view text, int columns) {
    std::size_t end = 0;
    while (end < text.size()) {
        const Decoded next = decode(text.substr(end));
        columns -= widthOf(next);
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
    const bool isCut = start > 0 && !isASCII(text[start - 1]) &&
                       decode(text.substr(start - 1)).character == kNotACharacter;
    return isCut ? text.substr(0, start - 1) : text;
}

std::string withInvalidBytesReplaced(std::string_view bytes) {
    return replaced(bytes, false);
}

std::string forTerminal(std::string_view bytes) {
    return replaced(bytes, true);
}

}  // namespace text
